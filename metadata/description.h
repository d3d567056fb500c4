#pragma once
// What the preview panel shows of the current file, without a widget: words and places.
#include "core/globals.h"
#include "core/native_path.h"
#include "imaging/comments/comment_set.h"
#include "imaging/image_facts.h"
#include "platform/ui_loop.h"
#include <QVector>
#include <memory>
#include <optional>

namespace quillane {

/// Pictures of the main window's image list that the panel uses.
enum PanelPicture : int {
    kPanelUpperBackground = 3, ///< painted at 0,0
    kPanelLowerBackground = 1, ///< painted at 0,80
    kPanelAlbumIcon = 13,
    kPanelImageIcon = 17,
    kPanelMediaIcon = 19,
    kPanelPrintSetIcon = 20,
};

/// Places of the panel in pixels.
inline constexpr int kPanelPictureTop = 95;
inline constexpr int kPanelPictureWidth = 210;
inline constexpr int kPanelFactsTop = kPanelPictureTop + kPanelPictureWidth + 40; ///< y1
inline constexpr int kPanelFactsBase = kPanelFactsTop + 65;                       ///< y0
inline constexpr int kPanelBoxTop = kPanelFactsTop + 65 + 20;
/// How far apart two lines stand at least; also the height a line takes.
inline constexpr int kPanelLineHeight = 15;

struct PanelLine {
    int x = 0;
    int y = 0;
    QString text;
    bool operator==(const PanelLine&) const = default;
};

struct PanelContent {
    QString banner;           ///< the file's leaf name, bold, size 16
    int icon = 0;             ///< PanelPicture of the kind; 0 for a banner alone
    QVector<PanelLine> lines; ///< in the order of printing
    QString boxText;          ///< txtImageDescriptionTags
    bool boxVisible = false;
    int boxTop = kPanelBoxTop;
    int boxWidth = 0; ///< of the text boxes
    QString albumComment;
    bool albumCommentVisible = false;
    bool pictureWanted = false; ///< LEAD2 shows the file's picture
};

/// What is known of the file when the panel is composed.
struct DescriptionInput {
    QString fileName;                           ///< full path
    int surfaceWidth = 0;                       ///< of picPreview, pixels
    FileStat stat;                              ///< of the file
    std::optional<ImageFacts> facts;            ///< nothing when the load failed
    std::shared_ptr<const CommentSet> comments; ///< null when the file cannot be opened
    /// Format code that the engine instance holds from before; it stands where the load failed.
    qint16 lastFormat = 0;
};

/// The panel with the banner alone.
PanelContent ShowFileBanner(const QString& fileName);

/// The whole panel of a file: album (read here), print-setting file, or anything else. Sets
/// globals.gsImageDimension and gsImageFormat where the file was loaded; where not, the lines of
/// the file before are printed again. Never fails: a step that does is left out, and reading an
/// album or a place beyond 16 bits ends the rest. Where two lines would stand on one another, the
/// later one moves down, and the text box moves below the lines.
PanelContent ComposeDescription(const DescriptionInput& input, Globals& globals, UiLoop& loop);

/// Adds the image lines, relative to x and y, to `lines`. Failure kFailureOverflow for a place
/// beyond 16 bits.
void PrintImageFacts(const DescriptionInput& input, qint16 x, qint16 y, const Globals& globals,
                     const UiLoop& loop, QVector<PanelLine>& lines);

} // namespace quillane
