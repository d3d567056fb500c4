#include "widgets/ui/file_icons.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

namespace quillane {

namespace {

enum class Sheet { Picture, Album, PrintSetting, Video, Folder, Home, Drive, File };

struct FileIconRow {
    const char* key; ///< without "Big"
    const char* themeName;
    Sheet sheet;
};
constexpr FileIconRow kFileIcons[] = {
    {"color", "image-x-generic", Sheet::Picture},
    {"ifl", "emblem-photos", Sheet::Album},
    {"PrintSetup", "document-print", Sheet::PrintSetting},
    {"Video", "video-x-generic", Sheet::Video},
};
constexpr FileIconRow kPlaceIcons[] = {
    {"folder", "folder", Sheet::Folder},
    {"folder-pictures", "folder-pictures", Sheet::Folder},
    {"user-home", "user-home", Sheet::Home},
    {"drive-harddisk", "drive-harddisk", Sheet::Drive},
    {"drive-removable-media", "drive-removable-media", Sheet::Drive},
    {"text-x-generic", "text-x-generic", Sheet::File},
};

const QColor kSheetPaper(0xfa, 0xfa, 0xf7);
const QColor kSheetLine(0x8a, 0x8f, 0x98);
const QColor kSheetBlue(0x4a, 0x90, 0xd9);
const QColor kSheetGreen(0x6a, 0xa8, 0x4f);
const QColor kSheetSun(0xf2, 0xb1, 0x34);
const QColor kSheetFolder(0xe3, 0xb3, 0x5c);
const QColor kSheetFolderBack(0xc4, 0x93, 0x3f);
const QColor kSheetDark(0x4b, 0x50, 0x59);

// All are drawn in a square of 32 by 32.

void DrawLandscape(QPainter& painter, const QRectF& frame)
{
    painter.setPen(Qt::NoPen);
    painter.setBrush(kSheetBlue.lighter(150));
    painter.drawRect(frame);
    painter.setBrush(kSheetSun);
    painter.drawEllipse(
        QPointF(frame.right() - frame.width() * 0.26, frame.top() + frame.height() * 0.30),
        frame.height() * 0.14, frame.height() * 0.14);
    QPainterPath hills(frame.bottomLeft());
    hills.lineTo(frame.left() + frame.width() * 0.34, frame.top() + frame.height() * 0.40);
    hills.lineTo(frame.left() + frame.width() * 0.58, frame.top() + frame.height() * 0.76);
    hills.lineTo(frame.left() + frame.width() * 0.72, frame.top() + frame.height() * 0.60);
    hills.lineTo(frame.bottomRight());
    hills.closeSubpath();
    painter.setBrush(kSheetGreen);
    painter.drawPath(hills);
}

void DrawPaper(QPainter& painter, const QRectF& frame)
{
    painter.setPen(QPen(kSheetLine, 1));
    painter.setBrush(kSheetPaper);
    painter.drawRoundedRect(frame, 1.5, 1.5);
}

void DrawPicture(QPainter& painter)
{
    DrawPaper(painter, QRectF(2.5, 5.5, 27, 21));
    DrawLandscape(painter, QRectF(5, 8, 22, 16));
}

void DrawAlbum(QPainter& painter)
{
    DrawPaper(painter, QRectF(7.5, 3.5, 21, 17));
    DrawPaper(painter, QRectF(5.5, 6.5, 21, 17));
    DrawPaper(painter, QRectF(3.5, 9.5, 21, 17));
    DrawLandscape(painter, QRectF(6, 12, 16, 12));
}

void DrawPrintSetting(QPainter& painter)
{
    DrawPaper(painter, QRectF(8.5, 3.5, 15, 12));
    painter.setPen(QPen(kSheetDark, 1));
    painter.setBrush(kSheetLine.lighter(125));
    painter.drawRoundedRect(QRectF(3.5, 12.5, 25, 11), 2, 2);
    DrawPaper(painter, QRectF(8.5, 18.5, 15, 10));
    DrawLandscape(painter, QRectF(11, 21, 10, 5));
    painter.setPen(Qt::NoPen);
    painter.setBrush(kSheetGreen);
    painter.drawEllipse(QPointF(25, 15.5), 1.3, 1.3);
}

void DrawVideo(QPainter& painter)
{
    painter.setPen(Qt::NoPen);
    painter.setBrush(kSheetDark);
    painter.drawRoundedRect(QRectF(2, 6, 28, 20), 2, 2);
    painter.setBrush(kSheetPaper);
    for (int hole = 0; hole < 5; ++hole) {
        painter.drawRect(QRectF(4.2 + hole * 5.2, 7.6, 2.8, 2.2));
        painter.drawRect(QRectF(4.2 + hole * 5.2, 22.2, 2.8, 2.2));
    }
    DrawLandscape(painter, QRectF(4, 11, 24, 10));
}

void DrawFolder(QPainter& painter)
{
    painter.setPen(Qt::NoPen);
    QPainterPath back;
    back.moveTo(3, 7);
    back.lineTo(12, 7);
    back.lineTo(15, 10);
    back.lineTo(29, 10);
    back.lineTo(29, 26);
    back.lineTo(3, 26);
    back.closeSubpath();
    painter.setBrush(kSheetFolderBack);
    painter.drawPath(back);
    painter.setBrush(kSheetFolder);
    painter.drawRoundedRect(QRectF(3, 13, 26, 13.5), 1.5, 1.5);
}

void DrawHome(QPainter& painter)
{
    painter.setPen(Qt::NoPen);
    painter.setBrush(kSheetFolder.lighter(125));
    painter.drawRect(QRectF(7, 15, 18, 12));
    painter.setBrush(kSheetFolderBack);
    painter.drawPolygon(QPolygonF({{3, 16}, {16, 4}, {29, 16}}));
    painter.setBrush(kSheetDark);
    painter.drawRect(QRectF(13.5, 19, 5, 8));
}

void DrawDrive(QPainter& painter)
{
    painter.setPen(QPen(kSheetDark, 1));
    painter.setBrush(kSheetLine.lighter(140));
    painter.drawRoundedRect(QRectF(3.5, 10.5, 25, 12), 2, 2);
    painter.setPen(Qt::NoPen);
    painter.setBrush(kSheetGreen);
    painter.drawEllipse(QPointF(24.5, 19), 1.5, 1.5);
    painter.setBrush(kSheetDark);
    painter.drawRect(QRectF(6.5, 18.3, 9, 1.4));
}

void DrawFile(QPainter& painter)
{
    DrawPaper(painter, QRectF(7.5, 3.5, 17, 25));
    painter.setPen(QPen(kSheetLine, 1));
    for (int line = 0; line < 4; ++line) {
        painter.drawLine(QPointF(10.5, 9.5 + line * 4), QPointF(21.5, 9.5 + line * 4));
    }
}

QIcon DrawnIcon(Sheet sheet)
{
    static constexpr void (*kDraw[])(QPainter&) = {DrawPicture, DrawAlbum,  DrawPrintSetting,
                                                   DrawVideo,   DrawFolder, DrawHome,
                                                   DrawDrive,   DrawFile};
    QIcon icon;
    for (const int side : {16, 22, 32, 48, 64, 96, 128}) {
        QPixmap pixmap(side, side);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.scale(side / 32.0, side / 32.0);
        kDraw[int(sheet)](painter);
        painter.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}

template <size_t N> QIcon IconFrom(const FileIconRow (&rows)[N], const QString& key)
{
    for (const FileIconRow& row : rows) {
        if (key == QLatin1String(row.key)) {
            const QIcon fromTheme = QIcon::fromTheme(QLatin1String(row.themeName));
            return fromTheme.isNull() ? DrawnIcon(row.sheet) : fromTheme;
        }
    }
    return {};
}

} // namespace

QIcon FileIcon(const QString& key)
{
    const QLatin1String big("Big");
    return IconFrom(kFileIcons, key.endsWith(big) ? key.chopped(big.size()) : key);
}

QIcon PlaceIcon(const QString& themeName)
{
    const QIcon icon = IconFrom(kPlaceIcons, themeName);
    return icon.isNull() ? IconFrom(kPlaceIcons, QStringLiteral("folder")) : icon;
}

} // namespace quillane
