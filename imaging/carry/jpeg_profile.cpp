#include "imaging/carry/jpeg_profile.h"
#include <algorithm>

namespace quillane::carry {

namespace {

constexpr qsizetype kProfileHead = 14; ///< bytes of "ICC_PROFILE\0", number and count

} // namespace

bool IsProfilePart(const JpegPart& part)
{
    return part.marker == kPartApp2 && part.content.size() > kProfileHead
        && part.content.startsWith(QByteArrayView("ICC_PROFILE\0", 12));
}

QByteArray ProfileOf(const std::vector<JpegPart>& segments)
{
    std::vector<const JpegPart*> pieces;
    for (const JpegPart& part : segments) {
        if (IsProfilePart(part)) {
            pieces.push_back(&part);
        }
    }
    const auto number = [](const JpegPart* part) { return quint8(part->content[12]); };
    std::stable_sort(pieces.begin(), pieces.end(),
                     [&](const JpegPart* a, const JpegPart* b) { return number(a) < number(b); });
    QByteArray profile;
    for (size_t i = 0; i < pieces.size(); ++i) {
        const JpegPart& piece = *pieces[i];
        if (number(&piece) != i + 1 || quint8(piece.content[13]) != pieces.size()) {
            return {};
        }
        profile += piece.content.sliced(kProfileHead);
    }
    return profile;
}

int ChannelsOf(const std::vector<JpegPart>& segments)
{
    for (const JpegPart& part : segments) {
        const bool frame = part.marker >= 0xc0 && part.marker <= 0xcf && part.marker != 0xc4
            && part.marker != 0xc8 && part.marker != 0xcc;
        if (frame && part.content.size() >= 6) {
            return quint8(part.content[5]);
        }
    }
    return 0;
}

} // namespace quillane::carry
