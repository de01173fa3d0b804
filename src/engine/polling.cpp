#include "engine/polling.h"
// Polling tick: built next.
namespace vantoro {
void FSPolling(Cockpit&) {}
bool FSConnect(Cockpit&) {
  return false;
}
bool ConnectToFS(Cockpit&) {
  return false;
}
void DisconnectFromFS(Cockpit&, int) {}
}  // namespace vantoro
