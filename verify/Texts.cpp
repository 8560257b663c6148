#include "verify/Texts.h"

#include "download/DownloadRequest.h"
#include "verify/Numbers.h"

#include <cstring>

#include <QStringList>

namespace verify {

namespace {

QString number(std::uint64_t value)
{
    return QString::fromStdString(grouped(value));
}

QString bytes(std::uint64_t count)
{
    return count == 1 ? translate("verify", "1 byte")
                      : translate("verify", "%1 bytes").arg(number(count));
}

QString systemText(int error)
{
    return QString::fromLocal8Bit(std::strerror(error));
}

} // namespace

QString Texts::shown(const std::string& text) const
{
    return QString::fromStdString(shownText(text, m_letters));
}

QString Texts::nameOf(const Recording& recording) const
{
    return recording.name.empty() ? translate("verify", "entry %1 of the list").arg(recording.entry)
                                  : shown(recording.name);
}

std::string Texts::line(const Recording& recording) const
{
    const QString name = nameOf(recording);
    const std::uint64_t card = recording.cardBytes.value_or(0);
    const std::uint64_t local = recording.localBytes.value_or(0);
    QString text;
    switch (recording.result) {
    case Result::SameSize:
        text = translate("verify", "%1: same size (%2)").arg(name, bytes(card));
        break;
    case Result::SameContent:
        text = translate("verify", "%1: the same, byte for byte (%2)").arg(name, bytes(card));
        break;
    case Result::Different:
        text = translate("verify", "%1: same size, but the contents differ from byte %2 onwards")
                   .arg(name, number(recording.difference.value_or(0) + 1));
        break;
    case Result::Shorter:
        text = translate("verify", "%1: shorter by %2: the download was cut")
                   .arg(name, bytes(card - local));
        break;
    case Result::Longer:
        text = translate("verify", "%1: longer by %2: the tail of an older file")
                   .arg(name, bytes(local - card));
        break;
    case Result::NotHere:
        text = translate("verify", "%1: not on this computer (%2)").arg(name, bytes(card));
        break;
    case Result::NotOnCard:
        text = translate("verify", "%1: not on the card").arg(name);
        break;
    case Result::Nowhere:
        text = translate("verify", "%1: neither on the card nor on this computer").arg(name);
        break;
    case Result::Unknown:
        text = translate("verify", "%1: cannot be compared: %2").arg(name, reason(recording));
        break;
    }
    return text.toStdString();
}

QString Texts::reason(const Recording& recording) const
{
    switch (recording.reason) {
    case Reason::None:
        break;
    case Reason::NoDetails:
        return translate("verify", "no details: %1").arg(trouble(recording.error));
    case Reason::NoContent:
        return translate("verify", "no content: %1").arg(trouble(recording.error));
    case Reason::LengthsDiffer:
        return translate("verify", "the camera sends %1, and its details say %2")
            .arg(bytes(recording.announced), bytes(recording.cardBytes.value_or(0)));
    case Reason::TwoEntries:
        return translate("verify", "the card's list has this name more than once");
    case Reason::NoName:
        return translate("verify", "it has no name");
    case Reason::NotDownloadable:
        return translate("verify", "the window cannot download a recording of this name");
    case Reason::TooLarge:
        return translate("verify", "it has 2 GiB or more, which the window cannot download (%1)")
            .arg(bytes(recording.cardBytes.value_or(0)));
    case Reason::Link:
        return translate("verify", "a link has this name on this computer");
    case Reason::Folder:
        return translate("verify", "a folder has this name on this computer");
    case Reason::NoFile:
        return translate("verify", "what has this name on this computer is not a file");
    case Reason::NameTooLong:
        return translate("verify", "no file on this computer can have this name");
    case Reason::FileError:
        return translate("verify", "the file on this computer cannot be read: %1")
            .arg(systemText(recording.systemError));
    case Reason::FileChanged:
        return translate("verify", "the file on this computer was changed meanwhile");
    }
    return {};
}

QString Texts::trouble(const CameraError& error) const
{
    const QString address = QString::fromLatin1(download::cameraHost);
    switch (error.trouble) {
    case Trouble::None:
        break;
    case Trouble::NoRoute:
        return translate("verify", "there is no route to the camera at %1 (%2)")
            .arg(address, error.systemText);
    case Trouble::Refused:
        return translate("verify", "the camera at %1 refuses the connection").arg(address);
    case Trouble::NoConnection:
        return translate("verify", "the camera at %1 did not answer within %2 s")
            .arg(address)
            .arg(m_timeout);
    case Trouble::Silent:
        return translate("verify", "the camera sent nothing for %1 s").arg(m_timeout);
    case Trouble::TooSlow:
        return translate("verify", "the camera's answer took more than %1 s")
            .arg(m_timeout * answerPatience);
    case Trouble::Surplus:
        return translate("verify", "the camera sent more than it announced");
    case Trouble::Closed:
        return translate("verify",
                         "the camera closed the connection before its answer was complete");
    case Trouble::Status:
        return translate("verify", "the camera answered with status %1").arg(error.status);
    case Trouble::TooLong:
        return translate("verify", "the camera's answer is too long");
    case Trouble::NotUnderstood:
        return translate("verify", "the camera's answer was not understood");
    }
    return {};
}

std::string Texts::failure(const Summary& summary) const
{
    if (summary.systemError != 0) {
        return translate("verify", "The folder %1 cannot be read: %2.")
            .arg(shown(summary.folder), systemText(summary.systemError))
            .toStdString();
    }
    const QString why = trouble(summary.error);
    QString text;
    if (why.isEmpty()) {
        return {};
    }
    switch (summary.failedStep) {
    case Step::Count:
        text = translate("verify", "The recordings cannot be counted: %1.").arg(why);
        break;
    case Step::List:
        text = translate("verify", "The recordings cannot be listed: %1.").arg(why);
        break;
    case Step::Details:
        text = translate("verify", "No details of %1: %2.").arg(shown(summary.failedName), why);
        break;
    case Step::Content:
        text = translate("verify", "No content of %1: %2.").arg(shown(summary.failedName), why);
        break;
    }
    return text.toStdString();
}

std::string Texts::wrongOption(const WrongOption& wrong) const
{
    const QString option = shown(wrong.option);
    QString text;
    switch (wrong.kind) {
    case WrongOption::Kind::Unknown:
        text = translate("verify", "There is no option %1.").arg(option);
        break;
    case WrongOption::Kind::NeedsValue:
    case WrongOption::Kind::EmptyValue:
        text = translate("verify", "The option %1 needs a value.").arg(option);
        break;
    case WrongOption::Kind::TakesNoValue:
        text = translate("verify", "The option %1 takes no value.").arg(option);
        break;
    case WrongOption::Kind::BadTimeout:
        text = translate("verify", "--timeout takes whole seconds from 1 to %1, not %2.")
                   .arg(QString::number(longestTimeout), option);
        break;
    }
    return translate("verify", "%1 See belun-verify --help.").arg(text).toStdString();
}

std::string Texts::noDesktop(const std::string& path) const
{
    return translate("verify", "%1 is no folder. See belun-verify --help.")
        .arg(shown(path))
        .toStdString();
}

std::string Texts::cannotWrite(int systemError)
{
    return translate("verify", "The report cannot be written: %1.")
        .arg(systemText(systemError))
        .toStdString();
}

std::string Texts::interrupted()
{
    return translate("verify", "Interrupted. Do not delete yet.").toStdString();
}

std::string Texts::pressEnter()
{
    return translate("verify", "Press Enter to close.").toStdString();
}

std::string Texts::help()
{
    return translate(
               "verify",
               "Usage: belun-verify [OPTION...] [NAME...]\n"
               "\n"
               "Compares the recordings on the camera's card with those in the folder DCIM on the\n"
               "desktop, and says whether the card may be deleted. Changes nothing on either "
               "side.\n"
               "With NAMEs it compares only these recordings.\n"
               "\n"
               "  --content          compare every byte, not only sizes: reads the whole card\n"
               "  --json             print a JSON object for each recording and for the summary\n"
               "  --timeout SECONDS  give up when the camera is silent for so long (%1)\n"
               "  --desktop DIR      look for DCIM in this folder\n"
               "  --wait             wait for Enter at the end\n"
               "  --help, --version\n"
               "\n"
               "Status: 0 every recording of the card is on this computer and the same, as far as\n"
               "it was compared; 1 it is not; 2 it could not be found out; 64 wrong options;\n"
               "130 interrupted.")
        .arg(Options().timeout)
        .toStdString();
}

} // namespace verify
