#include "link/snapshot.h"
// Decoder: built next.
namespace vantoro {
DecodeResult ProcessFSData(LinkState&, const DecodeInputs&) {
  return {};
}
}  // namespace vantoro
