#pragma once
// Layers made from library rows, and contact sheets of rendered cells, for
// tests that draw designs.

#include <functional>
#include <string>

#include "app/AppContext.h"
#include "engine/cSVGItem.h"
#include "platform/DrawingContext.h"
#include "platform/DrawingSurface.h"

// A layer of the library icon `name` of style `style`, as the design view
// makes it; null when the library has no such icon.
inline qds::SVGItemPtr LibraryLayer(qds::AppContext& app, const std::string& name, const std::string& style) {
  qds::DbRecordset rs = app.Cnn.Query(
      "Select Images.ID, Images.Name, SVG, Styles.Name As S, Themes.Name As T From Images "
      "Join Styles On Images.Styles_ID = Styles.ID Join Themes On Images.Themes_ID = Themes.ID "
      "Where Images.Name = '" +
      qds::SqlText(name) + "' And Styles.Name = '" + qds::SqlText(style) + "'");
  if (rs.Eof()) return nullptr;
  auto item = std::make_shared<qds::cSVGItem>();
  item->Init(rs.Fields("ID").Value(), rs.Fields("SVG").AsBytes(), rs.Fields("Name").AsString());
  item->setStyle(rs.Fields("S").AsString());
  item->setTheme(rs.Fields("T").AsString());
  return item;
}

// Cells of `side` pixels in rows of `columns`, each on white, drawn by
// `draw(index, context)`.
inline qds::SurfacePtr ContactSheet(int cells, int columns, int side,
                                    const std::function<void(int, qds::DrawingContext&)>& draw) {
  const int rows = (cells + columns - 1) / columns;
  qds::SurfacePtr sheet = qds::DrawingSurface::Create(columns * side, rows * side);
  qds::DrawingContext out(sheet);
  for (int i = 0; i < cells; ++i) {
    qds::SurfacePtr cell = qds::DrawingSurface::Create(side, side);
    {
      qds::DrawingContext ctx(cell);
      ctx.SetSourceColor(0xFFFFFF);
      ctx.Paint();
      draw(i, ctx);
    }
    out.DrawSurface(cell, (i % columns) * side, (i / columns) * side, side, side, qds::Filter::Nearest);
  }
  return sheet;
}
