#include "imaging/codecs/jpeg_session.h"
#include "imaging/limits.h"
#include <algorithm>
#include <csetjmp>
#include <cstdio>
#include <jpeglib.h>
// Behind jpeglib.h, which it builds on.
#include <jerror.h>

namespace quillane::codecs {

/// Everything a run touches. The library's errors come back by longjmp, so the functions it can
/// jump out of hold no C++ objects of their own.
struct JpegSession::Run {
    jpeg_decompress_struct info;
    jpeg_error_mgr errors;
    jpeg_source_mgr source;
    jpeg_progress_mgr progress;
    std::jmp_buf jump;
    ByteSource* bytes = nullptr;
    const std::atomic<bool>* cancelled = nullptr;
    qint64 position = 0;  ///< of the next byte to be fetched
    bool made = false;    ///< info has been created
    bool ended = false;   ///< the file ended before the picture
    bool starved = false; ///< the decoder has made up what the file did not give
    bool inScans = false; ///< the picture is put together from several scans
    int rows = 0;
    JpegTrouble trouble = JpegTrouble::None;
    char words[JMSG_LENGTH_MAX] = {};
    JOCTET buffer[64 * 1024];

    static Run& Of(j_common_ptr common) { return *static_cast<Run*>(common->client_data); }
    static Run& Of(j_decompress_ptr any) { return *static_cast<Run*>(any->client_data); }
    [[noreturn]] void GiveUp(JpegTrouble what)
    {
        trouble = what;
        std::longjmp(jump, 1);
    }
    static void OnError(j_common_ptr common);
    static void OnMessage(j_common_ptr common, int level);
    static void OnProgress(j_common_ptr common);
    static boolean Fill(j_decompress_ptr any);
    static void Skip(j_decompress_ptr any, long count);
    bool Start(int reduction);
    void Decode(uchar* to, qint64 line);
    bool DecodeSome(uchar* to, qint64 line);
};

namespace {

constexpr int kJpegManyScans = 20; ///< more than any encoder writes
constexpr int kJpegMaxScans = 1000;
/// Blocks of 8 x 8 visited by all scans together, beyond what encoders write: about a second.
constexpr qint64 kJpegMaxVisits = 100'000'000;
constexpr int kJpegRowsAtOnce = 16;

} // namespace

void JpegSession::Run::OnError(j_common_ptr common)
{
    Run& run = Of(common);
    common->err->format_message(common, run.words);
    const int code = common->err->msg_code;
    const bool memory = code == JERR_OUT_OF_MEMORY || code == JERR_NO_BACKING_STORE;
    run.GiveUp(memory ? JpegTrouble::Memory : JpegTrouble::Damage);
}

void JpegSession::Run::OnMessage(j_common_ptr common, int level)
{
    if (level < 0) {
        ++common->err->num_warnings;
        Run& run = Of(common);
        run.starved = run.starved || run.ended;
    }
}

/// Called by the library at every row of blocks while it reads scans.
void JpegSession::Run::OnProgress(j_common_ptr common)
{
    Run& run = Of(common);
    if (run.cancelled && run.cancelled->load(std::memory_order_relaxed)) {
        run.GiveUp(JpegTrouble::Cancelled);
    }
    const int scans = run.info.input_scan_number;
    if (scans > kJpegManyScans) {
        const qint64 blocks =
            (qint64(run.info.image_width) / 8 + 1) * (qint64(run.info.image_height) / 8 + 1);
        if (scans > kJpegMaxScans || blocks * scans > kJpegMaxVisits) {
            run.GiveUp(JpegTrouble::Scans);
        }
    }
}

boolean JpegSession::Run::Fill(j_decompress_ptr any)
{
    Run& run = Of(any);
    qint64 got = run.bytes->ReadAt(run.position, run.buffer, sizeof(run.buffer));
    run.position += got;
    if (got <= 0) {
        // The mark of the picture's end makes the decoder finish with what it has.
        run.ended = true;
        run.buffer[0] = 0xff;
        run.buffer[1] = JPEG_EOI;
        got = 2;
    }
    any->src->next_input_byte = run.buffer;
    any->src->bytes_in_buffer = size_t(got);
    return TRUE;
}

void JpegSession::Run::Skip(j_decompress_ptr any, long count)
{
    jpeg_source_mgr& source = *any->src;
    if (count <= 0) {
        return;
    }
    if (size_t(count) <= source.bytes_in_buffer) {
        source.next_input_byte += count;
        source.bytes_in_buffer -= size_t(count);
        return;
    }
    Of(any).position += count - qint64(source.bytes_in_buffer);
    source.bytes_in_buffer = 0;
}

bool JpegSession::Run::Start(int reduction)
{
    info.err = jpeg_std_error(&errors);
    errors.error_exit = OnError;
    errors.emit_message = OnMessage;
    info.client_data = this;
    if (setjmp(jump)) {
        return false;
    }
    jpeg_create_decompress(&info); // keeps err and client_data
    made = true;
    source.next_input_byte = nullptr;
    source.bytes_in_buffer = 0;
    source.init_source = [](j_decompress_ptr) {};
    source.fill_input_buffer = Fill;
    source.skip_input_data = Skip;
    source.resync_to_restart = jpeg_resync_to_restart;
    source.term_source = [](j_decompress_ptr) {};
    info.src = &source;
    progress.progress_monitor = OnProgress;
    info.progress = &progress;

    jpeg_read_header(&info, TRUE);
    info.scale_num = 1;
    info.scale_denom = unsigned(reduction);
    // A reduced picture has no fine edges left at which rough colour would show.
    info.do_fancy_upsampling = reduction == 1;
    info.out_color_space = info.num_components == 1 ? JCS_GRAYSCALE
        : info.num_components == 4                  ? JCS_CMYK
                                                    : JCS_EXT_BGRA;
    jpeg_calc_output_dimensions(&info);
    const qint64 size = qint64(info.output_width) * info.output_height
        * (info.out_color_space == JCS_GRAYSCALE ? 1 : 4);
    info.mem->max_memory_to_use = long(std::max(kJpegMemory - size, kJpegMemory / 8));
    return true;
}

/// Decodes up to kJpegRowsAtOnce rows; false when what comes next would be made up.
bool JpegSession::Run::DecodeSome(uchar* to, qint64 line)
{
    JSAMPROW targets[kJpegRowsAtOnce];
    const int wanted =
        std::min<int>(kJpegRowsAtOnce, int(info.output_height - info.output_scanline));
    for (int i = 0; i < wanted; ++i) {
        targets[i] = to + (qint64(info.output_scanline) + i) * line;
    }
    jpeg_read_scanlines(&info, targets, JDIMENSION(wanted));
    // The arithmetic decoder does not warn when it makes things up.
    starved = starved || (ended && info.arith_code);
    if (starved && !inScans) {
        return false;
    }
    rows = int(info.output_scanline);
    return true;
}

void JpegSession::Run::Decode(uchar* to, qint64 line)
{
    if (setjmp(jump)) {
        return;
    }
    jpeg_start_decompress(&info);
    inScans = jpeg_has_multiple_scans(&info) != 0;
    if (starved && info.input_scan_number <= 1 && info.input_iMCU_row == 0) {
        return; // not even the first scan has begun
    }
    while (info.output_scanline < info.output_height) {
        if (cancelled && cancelled->load(std::memory_order_relaxed)) {
            trouble = JpegTrouble::Cancelled;
            return;
        }
        if (!DecodeSome(to, line)) {
            return;
        }
    }
}

JpegSession::JpegSession() : mRun(new Run)
{ }

JpegSession::~JpegSession()
{
    if (mRun->made) {
        jpeg_destroy_decompress(&mRun->info);
    }
}

bool JpegSession::Start(const JpegStart& start)
{
    mRun->bytes = start.bytes;
    mRun->cancelled = start.cancelled;
    return mRun->Start(start.reduction);
}

void JpegSession::DecodeRows(uchar* to, qint64 line)
{
    mRun->Decode(to, line);
}

int JpegSession::Width() const
{
    return int(mRun->info.output_width);
}

int JpegSession::Height() const
{
    return int(mRun->info.output_height);
}

JpegPixels JpegSession::Pixels() const
{
    return mRun->info.out_color_space == JCS_GRAYSCALE ? JpegPixels::Grey
        : mRun->info.out_color_space == JCS_CMYK       ? JpegPixels::Cmyk
                                                       : JpegPixels::Bgra;
}

bool JpegSession::HasInvertedInk() const
{
    return mRun->info.out_color_space == JCS_CMYK && mRun->info.saw_Adobe_marker;
}

int JpegSession::Rows() const
{
    return mRun->rows;
}

JpegTrouble JpegSession::Trouble() const
{
    return mRun->trouble;
}

QString JpegSession::Words() const
{
    if (mRun->words[0] == 0) {
        return QStringLiteral("it ends before its first rows");
    }
    QString words = QString::fromLatin1(mRun->words);
    words[0] = words[0].toLower();
    return words;
}

bool JpegSession::IsPartial() const
{
    // Of a picture in scans that lacks its end, scans may be missing that nothing tells of.
    return mRun->starved || (mRun->ended && mRun->inScans) || mRun->trouble != JpegTrouble::None;
}

} // namespace quillane::codecs
