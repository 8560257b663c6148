// The complete scene: both modules, the camera, and the window linked to them.
#pragma once

#include "tests/kit/FakeVehicle.h"
#include "tests/kit/UserWindow.h"

#include <optional>

#include <QByteArray>
#include <QList>
#include <QTest>

/// Created for each test function. The window is destroyed first.
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

    /// Links, lists the files and discards the requests made so far.
    void linkAndBrowse(const QList<QByteArray>& names)
    {
        link();
        camera->holdFiles(names);
        user->clickBrowse();
        QCOMPARE(user->table().rowCount(), names.size());
        camera->forgetRequests();
    }

    // Each may be removed to simulate a device that is switched off.
    std::optional<fake::Module> ground;
    std::optional<fake::Module> control;
    std::optional<fake::Camera> camera;
    std::optional<UserWindow> user;
};
