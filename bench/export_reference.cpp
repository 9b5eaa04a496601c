// The reference of the export benchmark, and its helper:
//   export_reference --app-dir DIR --ids       prints 500 library IDs
//   export_reference --app-dir DIR --designs D writes D/one.json, D/six.json
//   export_reference --app-dir DIR --render IDS --out DIR
//     draws each document with librsvg at 256 px and writes it with cairo's
//     own PNG writer: what a plain program over these libraries does. (The
//     studio's encoder is its own, so it is not used here.)

#include <cairo.h>

#include <cstdio>
#include <string>

#include "platform/DbConnection.h"
#include "platform/DbRecordset.h"
#include "platform/DrawingContext.h"
#include "platform/DrawingSurface.h"
#include "platform/Files.h"
#include "platform/SvgRenderer.h"

using namespace qds;

namespace {

std::string IdOf(DbConnection& cnn, const std::string& name, const std::string& style) {
  return cnn
      .Query("Select Images.ID From Images Join Styles On Styles_ID = Styles.ID Where Images.Name = '" +
             name + "' And Styles.Name = '" + style + "'")
      .Fields(0)
      .AsString();
}

}  // namespace

int main(int argc, char** argv) {
  std::string app, mode, arg, out;
  for (int i = 1; i + 1 < argc; i += 2) {
    const std::string a = argv[i];
    if (a == "--app-dir") app = argv[i + 1];
    if (a == "--out") out = argv[i + 1];
    if (a == "--ids" || a == "--designs" || a == "--render") mode = a, arg = argv[i + 1];
  }
  if (argc == 4 && std::string(argv[3]) == "--ids") mode = "--ids";
  DbConnection cnn = DbConnection::Open(app + "/Database/Library.db", "", DbOpenMode::Existing);
  if (mode == "--ids") {
    DbRecordset rs = cnn.Query(
        "Select Images.ID From Images Join Styles On Styles_ID = Styles.ID Where Styles.Name In "
        "('Flat','Slimline') "
        "Order By Images.ID Limit 500");
    std::string ids;
    for (; !rs.Eof(); rs.MoveNext()) ids += (ids.empty() ? "" : ",") + rs.Fields(0).AsString();
    std::printf("%s\n", ids.c_str());
    return 0;
  }
  if (mode == "--designs") {
    WriteUtf8Text(
        arg + "/one.json",
        R"({"Description":"one layer","Entries":[{"Key":"_BaseIco","IsBaseEntry":true,"ImageIDs":"",)"
        R"("Settings":"{}","ColorFilter":-1}]})");
    const std::string bg = IdOf(cnn, "Background_Rounded_Square_Blue", "Design Elements");
    const std::string star = IdOf(cnn, "star", "Flat");
    WriteUtf8Text(
        arg + "/six.json",
        std::string(R"({"Description":"six layers","Entries":[)") +
            R"({"Key":"231126000000Text","ImageIDs":"","ColorFilter":0,"R":255,"G":255,"B":255,)"
            R"("Settings":"{\"TextContent\":\"Qd\",\"ZoomPercent\":30,\"Pos\":9}"},)" +
            R"({"Key":")" + star + R"(","ImageIDs":")" + star + R"(","ColorFilter":-6,)" +
            R"("Settings":"{\"ZoomPercent\":30,\"Pos\":3,\"GradStops\":[{\"Offset\":0,\"Color\":16777215,\"Alpha\":1},{\"Offset\":1,\"Color\":49407,\"Alpha\":1}]}"},)" +
            R"({"Key":"_BaseIco","IsBaseEntry":true,"ImageIDs":"","ColorFilter":-1,)"
            R"("Settings":"{\"ZoomPercent\":60,\"ClipExists\":true,\"ClipInverted\":false}"},)" +
            R"({"Key":"231126000002Glow","ImageIDs":")" + star +
            R"(","ColorFilter":0,"R":255,"G":255,"B":0,)" +
            R"("Settings":"{\"EffType\":5,\"EffSymbolKey\":\"_BaseIco\",\"EffBlur\":3}"},)" +
            R"({"Key":"231126000001Long Shadow","ImageIDs":"","ColorFilter":0,"R":0,"G":0,"B":0,)"
            R"("Settings":"{\"EffType\":1,\"EffSymbolKey\":\"_BaseIco\",\"EffBGKey\":\")" +
            bg + R"(\",\"Opacity\":30}"},)" + R"({"Key":")" + bg + R"(","ImageIDs":")" + bg +
            R"(","ColorFilter":-1,"Settings":"{}"}]})");
    return 0;
  }
  if (mode == "--render") {
    SvgRenderer renderer;
    int n = 0;
    for (DbRecordset rs = cnn.Query("Select ID, SVG From Images Where ID In (" + arg + ")"); !rs.Eof();
         rs.MoveNext()) {
      SurfacePtr surface = DrawingSurface::Create(256, 256);
      {
        DrawingContext ctx(surface);
        renderer.Render(ctx, rs.Fields(1).AsBytes(), 0, 0, 256, 256);
      }
      cairo_surface_write_to_png(surface->Native(), (out + "/" + rs.Fields(0).AsString() + ".png").c_str());
      ++n;
    }
    std::printf("%d files\n", n);
    return 0;
  }
  std::fprintf(stderr,
               "usage: export_reference --app-dir DIR (--ids | --designs DIR | --render IDS --out DIR)\n");
  return 2;
}
