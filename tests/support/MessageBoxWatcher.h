// Message boxes, answered by a test.
#pragma once

#include <QList>
#include <QMessageBox>
#include <QObject>
#include <QString>
#include <QStringList>

namespace support {

/// What a message box said.
struct SeenBox
{
    QString title;
    QString text;
    QStringList buttons; ///< Their texts without the ampersands, in the box's order.
    QMessageBox::StandardButtons standardButtons;
    QMessageBox::Icon icon;
    QMessageBox::StandardButton defaultButton;
};

/// Answers each message box that opens while it lives, in the order told. A box that no answer
/// waits for is closed as by the Escape key and fails the test, and so does an answer that no box
/// came for.
class MessageBoxWatcher : public QObject
{
    Q_OBJECT

public:
    MessageBoxWatcher();
    ~MessageBoxWatcher() override;

    /// The next box is answered by a click on that button.
    void answerNext(QMessageBox::StandardButton button);
    /// The next box is closed by the Escape key.
    void dismissNext();

    const QList<SeenBox>& boxes() const { return m_boxes; }

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void answer(QMessageBox& box);

    QList<QMessageBox::StandardButton> m_answers; // NoButton: the Escape key
    QList<SeenBox> m_boxes;
};

} // namespace support
