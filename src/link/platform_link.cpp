#include "link/platform_link.h"

#ifdef _WIN32
#include "link/fsuipc_link.h"
#endif

namespace vantoro {

bool NoSimulatorLink::Open(int, int& result) {
  result = kLinkNoServer;
  return false;
}

bool NoSimulatorLink::Read(uint32_t, uint32_t, void*, int& result) {
  result = kLinkNotOpen;
  return false;
}

bool NoSimulatorLink::Write(uint32_t, uint32_t, const void*, int& result) {
  result = kLinkNotOpen;
  return false;
}

bool NoSimulatorLink::Process(int& result) {
  result = kLinkNotOpen;
  return false;
}

std::unique_ptr<SimLink> MakePlatformLink() {
#ifdef _WIN32
  return std::make_unique<FsuipcLink>();
#else
  return std::make_unique<NoSimulatorLink>();
#endif
}

}  // namespace vantoro
