// Pieces of the snapshot decoder shared between its source files.
#pragma once

#include <string_view>

#include "link/snapshot.h"
#include "link/snapshot_bytes.h"

namespace vantoro {

// The last folder of a path with "\" separators, as it stands; empty when the
// path holds no folder.
std::string_view LastFolder(std::string_view path);

// The traffic table of the air (decoded in the air) and of the ground
// (decoded on the ground), with their counts; headings are magnetic, so
// MagVar of the current record must already be decoded.
void DecodeAirTraffic(const OffsetBlock& traffic, LinkState& link);
void DecodeGroundTraffic(const OffsetBlock& traffic, LinkState& link);

}  // namespace vantoro
