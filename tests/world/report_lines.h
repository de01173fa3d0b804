// Checks on the profile report, the "name=value" lines a pilot reads through
// vantoro-cli profile.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "base/text.h"
#include "world/profiles.h"

namespace vantoro {

inline void ExpectLines(const AircraftValues& a, const std::vector<std::string>& want,
                        const std::string& what) {
  const std::vector<std::string> lines = Split(ProfileReport(a), '\n');
  for (const std::string& w : want) {
    const std::string name = w.substr(0, w.find('=') + 1);
    std::string got = "(no " + name + " line)";
    for (const std::string& line : lines)
      if (StartsWith(line, name)) got = line;
    EXPECT_EQ(got, w) << what;
  }
}

}  // namespace vantoro
