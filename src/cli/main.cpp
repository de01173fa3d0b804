#include <cstdio>
// vantoro-cli: built next.
int main() {
  std::puts("vantoro-cli");
  return 0;
}
