#include "tests/kit/MessageBoxWatcher.h"

#include <QAbstractButton>
#include <QApplication>
#include <QEvent>
#include <QMessageBox>
#include <QObject>
#include <QPointer>
#include <QPushButton>
#include <QString>
#include <QTest>
#include <QTimer>

namespace support {

MessageBoxWatcher::MessageBoxWatcher()
{
    qApp->installEventFilter(this);
}

MessageBoxWatcher::~MessageBoxWatcher()
{
    qApp->removeEventFilter(this);
    if (!m_answers.isEmpty()) {
        QTest::qFail("a message box that was to be answered did not open", __FILE__, __LINE__);
    }
}

void MessageBoxWatcher::answerNext(QMessageBox::StandardButton button)
{
    m_answers.append(button);
}

void MessageBoxWatcher::dismissNext()
{
    m_answers.append(QMessageBox::NoButton);
}

bool MessageBoxWatcher::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Show) {
        if (auto* box = qobject_cast<QMessageBox*>(watched)) {
            const QPointer<QMessageBox> opened(box);
            QTimer::singleShot(0, this, [this, opened] {
                if (opened) {
                    answer(*opened);
                }
            });
        }
    }
    return QObject::eventFilter(watched, event);
}

void MessageBoxWatcher::answer(QMessageBox& box)
{
    SeenBox seen{box.windowTitle(),     box.text(), {},
                 box.standardButtons(), box.icon(), QMessageBox::NoButton};
    for (QAbstractButton* button : box.buttons()) {
        seen.buttons.append(button->text().remove(QLatin1Char('&')));
    }
    if (box.defaultButton() != nullptr) {
        seen.defaultButton = box.standardButton(box.defaultButton());
    }
    m_boxes.append(seen);

    if (m_answers.isEmpty()) {
        QTest::qFail(qPrintable("unexpected message box: " + seen.text), __FILE__, __LINE__);
        QTest::keyClick(&box, Qt::Key_Escape);
        box.reject();
        return;
    }
    const QMessageBox::StandardButton wanted = m_answers.takeFirst();
    if (wanted == QMessageBox::NoButton) {
        QTest::keyClick(&box, Qt::Key_Escape);
        return;
    }
    QAbstractButton* button = box.button(wanted);
    if (button == nullptr) {
        QTest::qFail(qPrintable("no such button in the message box: " + seen.text), __FILE__,
                     __LINE__);
        box.reject();
        return;
    }
    QTest::mouseClick(button, Qt::LeftButton);
}

} // namespace support
