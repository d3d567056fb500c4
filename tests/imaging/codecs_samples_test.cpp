// The folder of samples beside the project, where there is one: facts as its list tells them.
#include "codec_support_for_tests.h"
#include "core/native_path.h"
#include "imaging/reader.h"
#include "picture_maker.h"
#include <QHash>
#include <QStringList>
#include <algorithm>
#include <iostream>

namespace quillane {

namespace {

const QString kCodecSamples = QStringLiteral(QUILLANE_SOURCE_FOLDER "/../shared/samples");

bool CodecSamplesAreHere()
{
    if (StatPath(kCodecSamples + "/MANIFEST.tsv").type == FileType::Regular) {
        return true;
    }
    std::cout << "no folder of samples here: nothing to see\n";
    return false;
}

/// The list's rows as fields by the names of its first line.
QList<QHash<QString, QString>> CodecSampleRows()
{
    QList<QHash<QString, QString>> rows;
    const QString text = QString::fromUtf8(ReadWholeFile(kCodecSamples + "/MANIFEST.tsv", 4 << 20));
    QStringList names;
    for (const QString& line : text.split('\n', Qt::SkipEmptyParts)) {
        const QStringList fields = line.split('\t');
        if (names.isEmpty()) {
            names = fields;
            continue;
        }
        QHash<QString, QString> row;
        for (qsizetype i = 0; i < std::min(names.size(), fields.size()); ++i) {
            row.insert(names[i], fields[i]);
        }
        rows.append(row);
    }
    return rows;
}

/// A drawing has as many pixels as it is given: its own tests say how many those are.
bool CodecSampleIsDrawn(const QString& name)
{
    return QStringList({"WMF", "EMF", "DXF", "EPS"}).contains(name);
}

TEST(CodecSamples, FactsAndPixelsAreAsTheListTells)
{
    if (!CodecSamplesAreHere()) {
        return;
    }
    int seen = 0;
    for (const auto& row : CodecSampleRows()) {
        const QString file = row["file"];
        if (!file.startsWith("exif/") && !file.startsWith("formats/")) {
            continue;
        }
        const QString path = kCodecSamples + "/" + file;
        FileSource source(path);
        const QByteArray head = source.Head(512);
        const Codec* codec = FindCodec(head, file.section('.', -1));
        const bool refused = file.endsWith(".dwg") || file.endsWith(".dwf");
        if (!codec || codec->inWorker || CodecSampleIsDrawn(codec->name) || refused) {
            continue;
        }
        SCOPED_TRACE(file.toStdString());
        ++seen;
        const LoadedImage loaded = LoadFile(path);
        const ImageFacts& facts = loaded.facts;
        EXPECT_EQ(facts.width, row["width"].toInt());
        EXPECT_EQ(facts.height, row["height"].toInt());
        if (const int bits = row["bits_per_pixel"].toInt()) { // of bare samples it tells none
            EXPECT_EQ(facts.bits, bits);
        }
        if (!file.endsWith(".psd")) { // there the list counts layers
            EXPECT_EQ(facts.pages, row["frames"].toInt());
        }
        EXPECT_EQ(facts.sizeDisk, row["bytes"].toLongLong());
        EXPECT_NE(facts.format, 0);
        if (!row["orientation"].isEmpty()) {
            EXPECT_EQ(facts.orientation, row["orientation"].toInt());
        }
        if (facts.compression.startsWith("JPEG")) {
            EXPECT_EQ(facts.compression.contains("progressive"),
                      row["detail"].contains("Progressive"));
        }
        QSize upright(facts.width, facts.height);
        if (facts.orientation >= 5) {
            upright.transpose();
        }
        EXPECT_EQ(loaded.bitmap.Pixels().size(), upright);
        EXPECT_FALSE(loaded.bitmap.IsPartial());
        EXPECT_EQ(loaded.bitmap.ToDisplay().size(), upright);
    }
    std::cout << seen << " samples seen\n";
    EXPECT_GT(seen, 0);
}

TEST(CodecSamples, PicturesOfAllOrientationsStandAlike)
{
    if (!CodecSamplesAreHere()) {
        return;
    }
    QImage first;
    int seen = 0;
    for (int orientation = 2; orientation <= 8; ++orientation) {
        const LoadedImage loaded =
            LoadFile(kCodecSamples + QString("/exif/orientation_%1.jpg").arg(orientation));
        ++seen;
        EXPECT_EQ(loaded.facts.orientation, orientation);
        const QImage small = loaded.bitmap.ToDisplay().scaled(60, 45, Qt::IgnoreAspectRatio,
                                                              Qt::SmoothTransformation);
        if (first.isNull()) {
            first = small;
            continue;
        }
        // The pictures differ only in the numeral that is drawn in their middle.
        double apart = 0;
        for (int y = 0; y < small.height(); ++y) {
            for (int x = 0; x < small.width(); ++x) {
                apart += making::ColourDistance(small.pixel(x, y), first.pixel(x, y));
            }
        }
        EXPECT_LT(apart / (60 * 45), 10) << orientation;
        EXPECT_EQ(loaded.bitmap.Pixels().size(), QSize(600, 450));
    }
    std::cout << seen << " samples seen\n";
    EXPECT_EQ(seen, 7);
}

TEST(CodecSamples, EveryOneOfTheseDecodesReducedToo)
{
    if (!CodecSamplesAreHere()) {
        return;
    }
    int seen = 0;
    ListFolder(kCodecSamples + "/exif", [&](DirEntry&& entry) {
        if (!entry.name.endsWith(".jpg", Qt::CaseInsensitive)) {
            return true;
        }
        const QString path = kCodecSamples + "/exif/" + entry.name;
        DecodeRequest request;
        request.atLeast = QSize(50, 50);
        const LoadedImage reduced = LoadFile(path, request);
        const LoadedImage whole = LoadFile(path);
        EXPECT_GE(reduced.bitmap.Width(), 50) << entry.name.toStdString();
        EXPECT_GE(reduced.bitmap.Height(), 50) << entry.name.toStdString();
        EXPECT_LE(reduced.bitmap.Width(), whole.bitmap.Width());
        const auto middle = [](const Bitmap& bitmap) {
            return bitmap.ToDisplay()
                .scaled(8, 8, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                .pixel(3, 3);
        };
        EXPECT_LE(making::ColourDistance(middle(reduced.bitmap), middle(whole.bitmap)), 16)
            << entry.name.toStdString();
        ++seen;
        return true;
    });
    std::cout << seen << " samples seen\n";
    EXPECT_GT(seen, 0);
}

} // namespace

} // namespace quillane
