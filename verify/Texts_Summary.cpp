// The texts of the summary and of the progress.
#include "verify/Texts.h"

#include "verify/Numbers.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include <QStringList>

namespace verify {

namespace {

QString number(std::uint64_t value)
{
    return QString::fromStdString(grouped(value));
}

QString safeText(const Summary& summary)
{
    const QString count = number(summary.recordings);
    const bool one = summary.recordings == 1;
    if (summary.contents) {
        if (summary.named) {
            return one ? translate("verify",
                                   "The named recording is on this computer, the same, byte for "
                                   "byte.")
                       : translate("verify",
                                   "All %1 named recordings are on this computer, the same, byte "
                                   "for byte.")
                             .arg(count);
        }
        return one ? translate("verify",
                               "The only recording of the card is on this computer, the same, byte "
                               "for byte.")
                   : translate("verify",
                               "All %1 recordings of the card are on this computer, the same, byte "
                               "for byte.")
                         .arg(count);
    }
    if (summary.named) {
        return one ? translate("verify",
                               "The named recording is on this computer with the same size. Sizes "
                               "only; --content compares every byte.")
                   : translate("verify",
                               "All %1 named recordings are on this computer with the same size. "
                               "Sizes only; --content compares every byte.")
                         .arg(count);
    }
    return one ? translate("verify",
                           "The only recording of the card is on this computer with the same size. "
                           "Sizes only; --content compares every byte.")
               : translate("verify",
                           "All %1 recordings of the card are on this computer with the same size. "
                           "Sizes only; --content compares every byte.")
                     .arg(count);
}

/// Returns a clause for each reason why the comparison as a whole is not reliable.
QStringList doubts(const Summary& summary)
{
    QStringList clauses;
    if (!summary.complete) {
        clauses << translate("verify", "the comparison could not be completed");
    }
    if (summary.disagrees()) {
        clauses << translate("verify", "the camera's count (%1) and its list (%2) disagree")
                       .arg(number(summary.counted), number(summary.listed));
    }
    if (summary.changed) {
        clauses << translate("verify", "the card changed meanwhile, so compare again");
    }
    return clauses;
}

QString windowText(const Summary& summary)
{
    return summary.listed > windowRows
               ? translate("verify", "The window lists only the first %1 recordings of a card.")
                     .arg(windowRows)
               : QString();
}

QString timeText(double seconds)
{
    const auto whole = static_cast<qint64>(std::min(std::ceil(seconds), 359999.0));
    const auto two = [](qint64 value) {
        return QStringLiteral("%1").arg(value, 2, 10, QChar('0'));
    };
    const QString minutes = two(whole / 60 % 60) + ':' + two(whole % 60);
    return whole < 3600 ? minutes : QString::number(whole / 3600) + ':' + minutes;
}

} // namespace

QString Texts::namesOf(const Summary& summary) const
{
    QStringList names;
    for (const Recording& recording : summary.notSafe) {
        names << nameOf(recording);
    }
    return names.join(translate("verify", ", ", "between names"));
}

QString Texts::roomText(const Summary& summary) const
{
    if (summary.missingBytes == 0) {
        return {};
    }
    const QString missing = number(summary.missingBytes);
    if (!summary.freeBytes) {
        return translate("verify", "Missing here: %1 bytes.").arg(missing);
    }
    const QString free = number(*summary.freeBytes);
    return summary.missingBytes > *summary.freeBytes
               ? translate("verify",
                           "Missing here: %1 bytes; free in %2: only %3 bytes. Make room first.")
                     .arg(missing, shown(summary.folder), free)
               : translate("verify", "Missing here: %1 bytes; free in %2: %3 bytes.")
                     .arg(missing, shown(summary.folder), free);
}

std::string Texts::summary(const Summary& summary) const
{
    if (summary.verdict == Verdict::Empty) {
        return translate("verify", "The card holds no recordings.").toStdString();
    }
    if (summary.verdict == Verdict::Safe) {
        return safeText(summary).toStdString();
    }
    QStringList clauses = doubts(summary);
    if (!summary.notSafe.empty()) {
        clauses << translate("verify", "not known to be safe (%1 of %2): %3")
                       .arg(number(summary.notSafe.size()),
                            number(summary.safe + summary.notSafe.size()), namesOf(summary));
    }
    QString text =
        translate("verify", "Do not delete yet: %1.").arg(clauses.join(translate("verify", "; ")));
    for (const QString& sentence : {roomText(summary), windowText(summary)}) {
        text = sentence.isEmpty()
                   ? text
                   : translate("verify", "%1 %2", "two sentences").arg(text, sentence);
    }
    return text.toStdString();
}

std::string Texts::progress(const Advance& advance, double seconds) const
{
    switch (advance.step) {
    case Step::Count:
        return translate("verify", "Counting the recordings").toStdString();
    case Step::List:
        return translate("verify", "Listing the recordings").toStdString();
    case Step::Details:
        return translate("verify", "Size of %1/%2")
            .arg(advance.number)
            .arg(advance.count)
            .toStdString();
    case Step::Content:
        break;
    }
    constexpr double megabyte = 1000000;
    const auto done = static_cast<double>(advance.bytes);
    const auto total = static_cast<double>(advance.total);
    const double rate = seconds > 0 ? done / seconds : 0;
    const QString percent = QString::number(total > 0 ? std::floor(100 * done / total) : 100);
    const QString place = QStringLiteral("%1/%2").arg(advance.number).arg(advance.count);
    const QString speed = QString::number(rate / megabyte, 'f', 1);
    if (rate <= 0) {
        return translate("verify", "%1 %2: %3 %")
            .arg(place, shown(advance.name), percent)
            .toStdString();
    }
    return translate("verify", "%1 %2: %3 %, %4 MB/s, %5 left")
        .arg(place, shown(advance.name), percent, speed, timeText((total - done) / rate))
        .toStdString();
}

} // namespace verify
