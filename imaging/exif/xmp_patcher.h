#pragma once
#include <QByteArray>
#include <QString>
#include <optional>

namespace quillane {

/// What an XMP packet shares with the fields that were written.
struct XmpWishes {
    struct Description {
        QString before, after; ///< text of the description slot; empty for none
    };
    bool upright = false;                   ///< tiff:Orientation becomes 1 where it stands
    std::optional<Description> description; ///< where the slot changed
};

/// The packet with these properties kept in step and everything else as it is, in its own length
/// where its padding allows. The description (dc:description, its default language) is changed
/// only where it said what the slot said, or nothing: a text of its own stays. A packet that is
/// not UTF-8 stays as it is.
QByteArray PatchXmp(const QByteArray& packet, const XmpWishes& wishes);

} // namespace quillane
