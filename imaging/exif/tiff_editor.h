#pragma once
#include "imaging/exif/tiff_claims.h"
#include <QList>

namespace quillane::exif {

/// Changes fields of a TIFF structure and leaves every byte that is not theirs where it is: only
/// what is new moves to the end or into room that became free, so MakerNotes and whatever else
/// is found by its position stay sound.
class TiffEditor {
public:
    enum class Kind {
        ExifBlock, ///< the second directory is the preview's
        File,      ///< the second directory is a page; a preview hangs on the first directory
    };
    enum Part { First, Exif, Gps, Preview };
    static constexpr int kParts = 4;

    /// Failure kFailureUnreadable when there is no first directory.
    TiffEditor(QByteArray bytes, Kind kind);
    TiffEditor(const TiffEditor&) = delete;
    TiffEditor& operator=(const TiffEditor&) = delete;

    const TiffStructure& Structure() const { return *mStructure; }
    bool Has(Part part) const { return mParts[part].present; }
    /// The fields of a part as they will be.
    std::vector<const TiffField*> Fields(Part part) const;
    /// The first sound field of that tag, nullptr for none.
    const TiffField* Find(Part part, quint16 tag) const;
    /// Bytes of a field that Find or Fields gave, set or as they lie.
    QByteArray Value(Part part, quint16 tag) const;
    std::optional<quint64> Number(Part part, quint16 tag) const;

    /// Replaces the field or adds it (in the order of tags), making the part where there is none.
    /// `value` stands in the structure's byte order.
    void Set(Part part, quint16 tag, quint16 type, const QByteArray& value);
    void SetNumber(Part part, quint16 tag, quint64 number); ///< keeps the field's type if it fits
    void Remove(Part part, quint16 tag);
    /// Gives the field `offsets` the places of new contents and `lengths` their sizes.
    void SetContents(Part part, quint16 offsets, quint16 lengths,
                     const QList<QByteArray>& contents);
    /// Frees what two fields of offsets and lengths point to, and removes the fields.
    void RemoveContents(Part part, quint16 offsets, quint16 lengths);
    void RemovePreview(); ///< of an Exif block, with its picture
    /// Of a file: the directories that hang on the first one and say they are a smaller version
    /// of it go.
    void RemoveReducedDirectories();

    /// The structure with the changes. `reclaimZeros`: zeros at the end that no directory knows
    /// may be overwritten too. Failure kFailureLimit when it grows beyond what offsets can tell.
    QByteArray Commit(bool reclaimZeros = false) const;

private:
    struct Edited {
        TiffField field;
        bool changed = false;
        QByteArray value; ///< where changed
    };
    struct PartState {
        bool present = false;
        bool grown = false; ///< has more fields than its table has room for
        TiffDirectory was;
        std::vector<Edited> fields;
    };
    struct Content {
        Part part;
        quint16 offsets;
        QList<QByteArray> pieces;
    };
    class Layout;

    bool IsUntouched() const;
    void Load(Part part, qint64 at);
    qint64 PointerTo(quint16 tag) const;
    Edited& FieldFor(Part part, quint16 tag);
    void HangPreview();
    void Free(const ByteRange& range);

    QByteArray mBytes;
    Kind mKind;
    std::optional<TiffStructure> mStructure;
    std::optional<TiffClaims> mClaims;
    PartState mParts[kParts];
    std::vector<ByteRange> mOthers; ///< of directories that are left alone
    std::vector<ByteRange> mFreed;
    std::vector<ByteRange> mPicture; ///< the first directory's strips or tiles
    std::vector<Content> mContents;
    bool mPreviewMoves = false; ///< its picture is one piece that only its directory knows
    ByteRange mPreviewPicture;
};

} // namespace quillane::exif
