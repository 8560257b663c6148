// The whole of it: both modules, the camera, and the window linked to them.
#pragma once

#include "tests/app/FakeVehicle.h"
#include "tests/app/UserWindow.h"

#include <optional>

#include <QByteArray>
#include <QList>
#include <QTest>

/// Made anew for each test function. The window goes first.
struct LinkedScene
{
    LinkedScene()
        : ground(std::in_place, fake::groundAddress), control(std::in_place, fake::controlAddress),
          camera(std::in_place), user(std::in_place)
    {
    }

    /// Links, and waits until both link threads are connected.
    void link()
    {
        user->clickLink();
        QVERIFY(user->showsLinkSuccess());
        QTRY_COMPARE(control->links(), QList<int>{1});
        QTRY_COMPARE(ground->links(), QList<int>{1});
    }

    /// Links, lists the files and forgets the requests for that.
    void linkAndBrowse(const QList<QByteArray>& names)
    {
        link();
        camera->holdFiles(names);
        user->clickBrowse();
        QCOMPARE(user->table().rowCount(), names.size());
        camera->forgetRequests();
    }

    // Each may be taken away to play a device that is switched off.
    std::optional<fake::Module> ground;
    std::optional<fake::Module> control;
    std::optional<fake::Camera> camera;
    std::optional<UserWindow> user;
};
