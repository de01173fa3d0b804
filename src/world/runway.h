// A runway end of the world data, and the records that the approach, the
// spoken phrases and the landing evaluation share.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vantoro {

struct Runway {
  std::string Number;  // designator, padded ("07L")
  std::string ICAO;
  double Latitude = 0;
  double Longitude = 0;
  int16_t Heading = 0;       // true heading, whole degrees 0..360
  double GlideSlope = 3;     // degrees
  int32_t Elevation = 0;     // feet
  int32_t Width = 0;         // feet
  int32_t Length = 0;        // feet
  std::string ILSFrequency;  // empty: no ILS
  std::string ILSIdent;
  std::string Surface;  // upper case, one of the spoken surface names
  std::string ATIS;     // "118.30"
  double EndLatitude = 0;
  double EndLongitude = 0;
  int32_t ILSHeading = 0;
  std::string City;
  std::string AirportName;
  int32_t ThresholdOffset = 0;  // feet beyond the co-ordinates, 0..32000

  // Every property into another runway, in the order above.
  void CopyTo(Runway& target) const { target = *this; }
};

// The flat record of one runway of the detailed airport lookup: the same
// fields, with Latitude and Longitude read from the file's hemisphere form.
using RunwayRecord = Runway;

// The runway the flight is to end on.
struct DestinationRunway {
  bool Set = false;
  Runway runway;
};

// A radio station of the VOR file (VORs and NDBs), kept in file order.
struct VORStation {
  std::string Ident;
  std::string Name;
  double Latitude = 0;
  double Longitude = 0;
  int32_t Elevation = 0;
  double Frequency = 0;  // MHz for a VOR (116.8), kHz for an NDB (385)
  int32_t Flag = -1;     // -1 when the file has no seventh field
};

}  // namespace vantoro
