// What the app's requests do on the loop thread: each function reads or
// changes the instructor's pages (pilot, settings, aircraft) and answers with
// a JSON document. A request the pages refuse answers {"status": 4xx,
// "error": "..."} and changes nothing; the server turns "status" into the
// HTTP status. These run only inside Mailbox::Ask.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace vantoro {

class Instructor;

namespace web {

using nlohmann::json;

// {"status": status, "error": message}
json Refusal(int status, std::string_view message);

json ConnectAction(Instructor& in);
json DisconnectAction(Instructor& in);
// {"key": N}: the pilot presses hot key slot N (1..15) in the app; it acts in
// the next tick, as the key pressed in the simulator would. Refused while
// not connected.
json PressKeyAction(Instructor& in, const json& body);

// The pilot page: every field of the record, the file, the unsaved flag, the
// instructors, the pilot files of the load dialog.
json PilotPage(Instructor& in);
// Changes fields of the page (the body's "record"); unknown fields or wrong
// types refuse the whole change.
json EditPilot(Instructor& in, const json& body);
json NewPilotAction(Instructor& in);
// {"file": "Name.plt"}: one of the files the load dialog lists.
json LoadPilotAction(Instructor& in, const json& body);
// {"name": "..."} saves under that name in the roster; without a name the
// current file is written. The save dialog ({"saveAs": true}) without a
// name, or no name and no current file, answers the dialog's message.
json SavePilotAction(Instructor& in, const json& body);
// The picture's bytes, already measured by the server (`width`, `height`),
// are written to `file` and set; the 80-pixel rules refuse first.
json SetPictureAction(Instructor& in, const std::string& bytes, const std::string& file);
// The path of the pilot's picture, or "".
json PicturePath(Instructor& in);
// "Listen to instructor": a sample in the chosen voice.
json ListenAction(Instructor& in);

// The settings page, the sound devices of the instructor's audio included.
json SettingsPage(Instructor& in);
// Changes the given settings (the body's "settings"), writes "settings.ini";
// "soundCard" chooses and stores the output device.
json EditSettings(Instructor& in, const json& body);

// The aircraft page: title, profile file and source, the raw profile and
// the working values, the monitoring boxes with their names and states.
json AircraftPage(Instructor& in);
// {"source": "optFSData" | "optVantoroData" | "optUserData"}
json ChooseSourceAction(Instructor& in, const json& body);
// {"profile": {...raw fields}}: validated; when good, saved as the pilot's
// own profile and taken into the working values. Refused unless the pilot's
// own profile is selected.
json SaveProfileAction(Instructor& in, const json& body);
// {"box": N, "value": bool} or {"key": "MonitorEngines" | "MonitorLightsN" |
// "InstructorGPWS" | "InstructorVolume", "value": ...}: stored at once per
// aircraft.
json MonitoringAction(Instructor& in, const json& body);

// The pilot's file and the files beside it (".dat", ".htm"), for the log book.
json PilotFiles(Instructor& in);

}  // namespace web
}  // namespace vantoro
