#include "viewer/save_road.h"

#include "core/failure.h"
#include "core/file_kinds.h"
#include "core/paths.h"
#include "imaging/comments/slots.h"
#include "imaging/format_facts.h"
#include "imaging/format_table.h"
#include "metadata/tag_writer.h"

namespace quillane {

namespace {

constexpr qint16 kPrintCopyFormat = 96; // Exif TIFF, uncompressed
constexpr qint32 kPrintCopyBits = 24;
constexpr quint32 kPrintCopyMode = 0600; // for nobody else's eyes
constexpr qint64 kSaveMarkBytes = 512;   // that codecs know a file by

/// Notes a file as it was loaded or saved; LEAD1 reads its fields from what is noted from now on.
void NoteSavedFile(ViewerPicture& held, EngineInstance& LEAD1,
                   const std::shared_ptr<const LoadedFile>& file)
{
    held.loaded = file;
    held.pixels = LEAD1.Loaded() ? LEAD1.Bitmap().Pixels().cacheKey() : 0;
    held.comments = std::make_shared<CommentSet>(ReadComments(*file->source, file->path));
    LEAD1.Comments().Adopt(file->path, file->source->Stat(), held.comments);
}

/// What a save left behind is what the window holds from now on.
void NoteSaved(ViewerPicture& held, EngineInstance& lead)
{
    // What happens to the file from here on does not undo that it was saved.
    ResumeNext([&] {
        if (lead.Loaded()) {
            NoteSavedFile(held, lead, lead.Loaded());
            return;
        }
        auto source = std::make_shared<FileSource>(held.file);
        const ImageFacts facts = ProbeSource(*source, held.file);
        const Codec* const codec = FindCodec(source->Head(kSaveMarkBytes), {});
        NoteSavedFile(held, lead,
                      std::make_shared<LoadedFile>(held.file, source, codec, facts, 0, false));
    });
}

/// Failure for a file whose own format cannot be written.
void RequireOwnFormat(const ViewerPicture& held)
{
    if (!held.loaded) {
        throw Failure(kFailureGeneral,
                      QStringLiteral("\"%1\" was not loaded, so its format is not known. Save "
                                     "under another name.")
                          .arg(LeafName(held.file)));
    }
    if (FindSaveVariant(held.format)) {
        return;
    }
    const QString why = WhyNotWritten(held.format);
    throw Failure(kFailureGeneral,
                  QStringLiteral("\"%1\" cannot be saved in its own format%2. Save it under "
                                 "another name, in another format.")
                      .arg(LeafName(held.file), why.isEmpty() ? why : QStringLiteral(": ") + why));
}

/// Whether the instance has forgotten its file, although its picture is the very one that was
/// loaded or saved: something was pasted and taken back.
bool PictureIsTheLoadedOne(const EngineInstance& LEAD1, const ViewerPicture& held)
{
    return !LEAD1.Loaded() && held.loaded && held.pixels != 0
        && held.pixels == LEAD1.Bitmap().Pixels().cacheKey();
}

/// A picture from the clipboard or a scanner knows nothing of the file that it is saved over: what
/// a loaded one would be refused for is looked at here.
void RequireUntouchedFile(const EngineInstance& LEAD1, const ViewerPicture& held)
{
    if (StatPath(held.file).type == FileType::Missing) {
        return;
    }
    if (!held.loaded->IsAt(held.file) || !held.loaded->IsUnchanged()) {
        throw Failure(kFailureIo,
                      QStringLiteral("\"%1\" has been changed by another program since it was "
                                     "loaded. Load it again, or save under another name.")
                          .arg(LeafName(held.file)));
    }
    if (held.loaded->facts.pages > 1 && !PictureIsTheLoadedOne(LEAD1, held)) {
        throw Failure(kFailureGeneral,
                      QStringLiteral("\"%1\" holds %2 pictures, and all but the first would be "
                                     "lost. Save under another name.")
                          .arg(LeafName(held.file))
                          .arg(held.loaded->facts.pages));
    }
}

/// Every comment of the viewer's file becomes a pending one: as the file was when it was loaded,
/// whatever has become of it since.
void TakeFileComments(EngineInstance& LEAD1, const ViewerPicture& held)
{
    if (!held.comments) {
        CopyComments(LEAD1, held.file);
        return;
    }
    for (qint16 slot = kFirstSlot; slot <= kLastSlot; ++slot) {
        LEAD1.SetComment(slot, held.comments->At(slot));
    }
}

/// The comment loop of a save: the file's own, then what the window holds.
void TakeAllComments(EngineInstance& LEAD1, ViewerPicture& held, const UiLoop& loop)
{
    if (IsImageFile(held.file) != kTrue) {
        return;
    }
    TakeFileComments(LEAD1, held);
    if (held.tagsRead) {
        QString text = held.tags;
        text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
        text.replace(u'\n', QStringLiteral("\r\n"));
        LEAD1.SetComment(kDescriptionSlot, text.isEmpty() ? CommentValue() : CommentValue(text));
    }
    WriteGeneralTags(LEAD1, held.file, held.general, loop, held.appTitle, held.generalRead);
}

/// Whether the bytes of the loaded file are still those that the picture came from. A file that
/// was only touched counts as the same.
bool StillHoldsWhatWasLoaded(const ViewerPicture& held)
{
    if (!held.loaded || held.loaded->IsUnchanged()) {
        return true;
    }
    const FileStat now = StatPath(held.file);
    return held.loaded->IsAt(held.file) && now.size == held.loaded->source->Stat().size
        && held.comments && ReadComments(*held.loaded->source, held.file) == *held.comments;
}

/// Runs a save while LEAD1 knows of the loaded file only what may be carried over.
template <typename Save>
void SaveWithItsFile(EngineInstance& LEAD1, const ViewerPicture& held, bool own, const Save& save)
{
    if (PictureIsTheLoadedOne(LEAD1, held)) {
        LEAD1.SetLoaded(held.loaded);
    }
    if (own || StillHoldsWhatWasLoaded(held)) {
        save();
        return;
    }
    // Somebody wrote into the file: what lies there now is not this picture's to take along.
    const std::shared_ptr<const LoadedFile> file = LEAD1.Loaded();
    LEAD1.SetLoaded(nullptr);
    try {
        save();
    } catch (...) {
        LEAD1.SetLoaded(file);
        throw;
    }
    LEAD1.SetLoaded(file);
}

/// Writes what was chosen with all that `lead` has pending.
void WriteChoice(EngineInstance& lead, const SaveDialogChoice& choice)
{
    const qint32 quality = QualityFor(choice.file, choice.quality);
    const bool adds = choice.multiPage > 0;
    const bool stands = StatPath(choice.file).type != FileType::Missing;
    if (choice.stampWanted && !(adds && stands)) {
        lead.SaveWithThumbnail(choice.file, choice.format, choice.bits, quality, choice.stampSize,
                               choice.stampSize, choice.stampBits);
        return;
    }
    lead.Save(choice.file, choice.format, choice.bits, quality, adds ? kSaveAppend : kSaveReplace);
}

} // namespace

void NoteLoaded(ViewerPicture& held, EngineInstance& LEAD1, const QString& file)
{
    held.file = file;
    held.format = 0;
    held.bits = 0;
    held.tags.clear();
    held.tagsRead = false;
    held.general = {};
    held.generalRead = false;
    held.loaded.reset();
    held.comments.reset();
    held.pixels = 0;
    if (LEAD1.Loaded() && LEAD1.Loaded()->path == file) {
        held.format = LEAD1.InfoFormat();
        held.bits = LEAD1.InfoBits();
        NoteSavedFile(held, LEAD1, LEAD1.Loaded());
    }
}

void NoteBeforeNewPicture(ViewerPicture& held, const EngineInstance& LEAD1)
{
    if (LEAD1.Loaded() && LEAD1.Loaded() == held.loaded) {
        held.pixels = LEAD1.Bitmap().Pixels().cacheKey();
    }
}

void SaveImage(EngineInstance& LEAD1, ViewerPicture& held, const UiLoop& loop)
{
    RequireOwnFormat(held);
    if (!LEAD1.Loaded()) {
        RequireUntouchedFile(LEAD1, held);
    }
    TakeAllComments(LEAD1, held, loop);
    SaveWithItsFile(LEAD1, held, true, [&] {
        LEAD1.Save(held.file, held.format, held.bits, QualityFor(held.file, held.quality),
                   held.mode);
    });
    NoteSaved(held, LEAD1);
}

void SaveImageAs(EngineInstance& LEAD1, ViewerPicture& held, const SaveDialogChoice& choice,
                 const UiLoop& loop)
{
    if (choice.file.isEmpty()) {
        return;
    }
    TakeAllComments(LEAD1, held, loop);
    const bool own = choice.file == held.file || (held.loaded && held.loaded->IsAt(choice.file));
    SaveWithItsFile(LEAD1, held, own, [&] { WriteChoice(LEAD1, choice); });
    if (!own) {
        return;
    }
    NoteSaved(held, LEAD1);
    if (held.loaded) {
        held.format = held.loaded->facts.format;
        held.bits = held.loaded->facts.bits;
    }
}

QString SavePrintCopy(EngineInstance& LEAD1, const ViewerPicture& held, const FixedPlaces& places)
{
    if (IsImageFile(held.file) == kTrue) {
        TakeFileComments(LEAD1, held);
    }
    const QString copy = places.PrintCopy();
    const bool made = StatPath(copy).type == FileType::Missing;
    if (made) {
        WriteWholeFile(copy, {}, {kPrintCopyMode, false}); // a save keeps its mode
    }
    try {
        LEAD1.Save(copy, kPrintCopyFormat, kPrintCopyBits, kBestQuality, kSaveReplace);
    } catch (...) {
        if (made) {
            RemoveFile(copy);
        }
        throw;
    }
    return copy;
}

} // namespace quillane
