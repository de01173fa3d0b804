// Distances and bearings on the earth as the instructor measures them: one
// degree of great circle is 60 nautical miles, so no earth radius is needed.
#pragma once

namespace vantoro {

// Great-circle distance, nautical miles.
double CalcDistance(double lat1, double lon1, double lat2, double lon2);
// Initial great-circle course from point 1 to point 2: true degrees, 0 north,
// clockwise; 0 when the points coincide.
double CalcAngle(double lat1, double lon1, double lat2, double lon2);
// Arc cosine built from the arc tangent, with its own short value of pi.
double ACos(double x);
// A whole number of degrees brought into -180..179.
int WrapLongLat(int degrees);

}  // namespace vantoro
