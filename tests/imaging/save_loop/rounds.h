#pragma once
// What a round of the program that saves over and over leaves in its file.
#include <QString>

namespace quillane {

/// The grey of a round's picture.
inline int LoopLevel(int round)
{
    return 20 + round * 37 % 200;
}
/// The description of a round; its length differs from round to round.
inline QString LoopText(int round)
{
    return QStringLiteral("Round=%1\r\nNote=%2\r\n")
        .arg(round)
        .arg(QString(round * 131 % 1500, u'x'));
}
/// The round whose description this is, -1 when it is not one whole.
inline int LoopRound(const QString& text)
{
    bool number = false;
    const int round = text.section(u'=', 1).section(u'\r', 0, 0).toInt(&number);
    return number && text == LoopText(round) ? round : -1;
}

} // namespace quillane
