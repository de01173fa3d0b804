#include "records/markup.h"

#include <gtest/gtest.h>

namespace vantoro {
namespace {

const char* kReport =
    "[HEADER]Kate piloting Cessna 172[/HEADER]\r\n"
    "[STATS][VERSION][SIM_VERSION][VISIBILITY][WINDSPEED][/STATS]\r\n"
    "[SCORE]Landing Score: 87.50[/SCORE]\r\n"
    "Landing commended in the following areas:\r\n[LIST]\r\n"
    "* Smooth touchdown.\r\n"
    "* On the centre line.\r\n[/LIST]";

TEST(Markup, PlainDisplayLosesEveryTagAndKeepsThePoints) {
  EXPECT_EQ(RemoveMarkup(kReport),
            "Kate piloting Cessna 172\r\n"
            "\r\n"
            "Landing Score: 87.50\r\n"
            "Landing commended in the following areas:\r\n\r\n"
            "* Smooth touchdown.\r\n"
            "* On the centre line.\r\n");
}

TEST(Markup, LogBookHtmlWithAndWithoutThePilotsPicture) {
  MarkupValues v{"Vantoro v0.1.0", "FSX", 9.5, 12, ""};
  const std::string html = ApplyMarkup(kReport, v);
  EXPECT_EQ(html,
            "<font size='5'><b>Kate piloting Cessna 172</b></font><br>\r\n"
            "Vantoro v0.1.0<br>Using: FSX<br>Visibility: 9.50 Miles "
            "&nbsp;&nbsp;&nbsp;&nbsp;Wind: 12 Knots<br><br>\r\n"
            "<b>Landing Score: 87.50</b><br>\r\n"
            "Landing commended in the following areas:<ul><br>\r\n"
            "<li>Smooth touchdown.<br>\r\n"
            "<li>On the centre line.<br>\r\n</ul>");

  v.PilotImage = "C:\\Pilots\\O'Hara.jpg";  // an apostrophe stands as it is
  const std::string withPicture = ApplyMarkup("[STATS][VERSION][/STATS]", v);
  EXPECT_EQ(withPicture,
            "<table border=0><tr><td align=center width=90><img src='C:\\Pilots\\O'Hara.jpg'>"
            "</td><td>Vantoro v0.1.0<br></td></tr></table>");
}

}  // namespace
}  // namespace vantoro
