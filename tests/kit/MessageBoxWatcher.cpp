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
    m_boxes.append({box.windowTitle(), box.text(), box.standardButtons(), box.icon()});
    if (m_answers.isEmpty()) {
        QTest::qFail(qPrintable("unexpected message box: " + box.text()), __FILE__, __LINE__);
        QTest::keyClick(&box, Qt::Key_Escape);
        box.reject();
        return;
    }
    QAbstractButton* button = box.button(m_answers.takeFirst());
    if (button == nullptr) {
        QTest::qFail(qPrintable("no such button in the message box: " + box.text()), __FILE__,
                     __LINE__);
        box.reject();
        return;
    }
    QTest::mouseClick(button, Qt::LeftButton);
}

} // namespace support
