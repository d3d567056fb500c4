#pragma once
#include "imaging/carry/jpeg_parts.h"

namespace quillane::carry {

/// Whether a segment is a piece of a colour profile.
bool IsProfilePart(const JpegPart& part);
/// The colour profile of these segments, put together; empty for none, or for pieces that make
/// no whole.
QByteArray ProfileOf(const std::vector<JpegPart>& segments);
/// Number of colour channels that the frame states; 0 without a frame.
int ChannelsOf(const std::vector<JpegPart>& segments);

} // namespace quillane::carry
