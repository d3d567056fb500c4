#pragma once
// What the benchmarks share: folders of made pictures, times, and one line per figure.
#include <QByteArray>
#include <QString>
#include <chrono>
#include <functional>
#include <vector>

namespace quillane::bench {

/// Prints one line: what was measured, its reference in the same run, their ratio and what it has
/// to be. Returns whether it is so.
enum class Wanted { AtLeast, AtMost };
bool PrintFigure(const char* name, double value, double reference, const char* unit, double ratio,
                 Wanted wanted, double required);

/// Milliseconds that a piece of work takes: of the clock, and of all cores that work for it.
struct Spent {
    double wall = 0;
    double cores = 0;
};
Spent Measure(const std::function<void()>& work);
/// Runs two works in turn for some rounds; the least of each, so that what else the machine does
/// weighs on neither.
struct Pair {
    Spent first, second;
};
Pair MeasureInTurn(int rounds, const std::function<void()>& first,
                   const std::function<void()>& second);

/// Memory of this process in use now and at its highest, in bytes.
qint64 ResidentBytes();
qint64 PeakResidentBytes();

/// A JPEG of noise on slow waves, different for every seed; with a preview of 160 pixels in an
/// Exif block when asked, else with a plain header.
struct JpegShape {
    int width = 4000, height = 3000;
    int quality = 88;
    bool preview = false;
    bool exif = false; ///< an Exif block with maker, model and a description
};
QByteArray MakeNoisyJpeg(const JpegShape& shape, unsigned seed);

/// Full paths of `count` JPEGs in that folder, which is made and filled where it is not there.
std::vector<QString> FolderOfJpegs(const QString& folder, int count, const JpegShape& shape);
/// The names of files as the system takes them.
std::vector<QByteArray> NamesOf(const std::vector<QString>& paths);
/// The bare loop that listing a folder of JPEGs is compared with: opens each, reads its first
/// 4 KB and finds the frame marker. A file without one ends the process.
void ReadHeadersBarely(const std::vector<QByteArray>& names);
/// Where the folders of pictures stand: the argument, else below the folder for temporary files.
QString PicturesFolder(int argc, char** argv);
/// Writes what is pending to the disk and makes the system forget the content of these files.
void ForgetContent(const std::vector<QString>& paths);

} // namespace quillane::bench
