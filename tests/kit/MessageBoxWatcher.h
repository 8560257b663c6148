// Answers message boxes in a test.
#pragma once

#include <QList>
#include <QMessageBox>
#include <QObject>
#include <QString>

namespace support {

/// The contents of a message box.
struct SeenBox
{
    QString title;
    QString text;
    QMessageBox::StandardButtons standardButtons;
    QMessageBox::Icon icon;
};

/// An event filter that answers each message box that opens while this object exists, with the
/// requested answers in order. A message box without a requested answer is closed with the Escape
/// key. Both such a box and a requested answer without a box fail the test.
class MessageBoxWatcher : public QObject
{
    Q_OBJECT

public:
    MessageBoxWatcher();
    ~MessageBoxWatcher() override;

    /// Answers the next box by clicking this button.
    void answerNext(QMessageBox::StandardButton button);

    const QList<SeenBox>& boxes() const { return m_boxes; }

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void answer(QMessageBox& box);

    QList<QMessageBox::StandardButton> m_answers;
    QList<SeenBox> m_boxes;
};

} // namespace support
