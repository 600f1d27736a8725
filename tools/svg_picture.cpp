#include "tools/svg_picture.h"

#include <fmt/format.h>

#include <algorithm>

#include "tools/markup.h"

namespace sbd_tool {

const char k_svg_style[] =
    ".sbd-picture text{font-family:ui-monospace,Menlo,Consolas,monospace;font-size:13px;"
    "fill:#1c2430}\n"
    ".sbd-picture .title{font-size:15px;font-weight:bold}\n"
    ".sbd-picture .small{font-size:11px;fill:#56606e}\n"
    ".sbd-picture rect{stroke:#56606e;stroke-width:1}\n"
    ".sbd-picture .window{fill:#cfe3f7}\n"
    ".sbd-picture .hole{fill:none;stroke-dasharray:3 3}\n"
    ".sbd-picture .fault{fill:#f9c9c4;stroke:#a8201a}\n"
    ".sbd-picture .source{fill:#e4e7ec}\n"
    ".sbd-picture .step{fill:#f7eccb}\n"
    ".sbd-picture .result{fill:#d3ecd3}\n"
    ".sbd-picture .idle{fill:none;stroke-dasharray:3 3}\n"
    ".sbd-picture .line{stroke:#56606e;stroke-width:1;fill:none}\n"
    "@media screen and (prefers-color-scheme:dark){\n"
    ".sbd-picture text{fill:#e6e9ee}\n"
    ".sbd-picture .small{fill:#a7b0bd}\n"
    ".sbd-picture rect,.sbd-picture .line{stroke:#8c96a4}\n"
    ".sbd-picture .window{fill:#234463}\n"
    ".sbd-picture .fault{fill:#6b2320;stroke:#f08a80}\n"
    ".sbd-picture .source{fill:#39404b}\n"
    ".sbd-picture .step{fill:#54481d}\n"
    ".sbd-picture .result{fill:#23502a}\n"
    "}\n";

namespace {

constexpr int k_margin = 12;

// A picture that stands alone brings its paper along.
constexpr char k_paper_style[] =
    ".paper{fill:#ffffff;stroke:none!important}\n"
    "@media screen and (prefers-color-scheme:dark){.paper{fill:#14181f}}\n";

std::string_view class_of(SVG_PICTURE::LOOK look) {
  switch (look) {
    case SVG_PICTURE::LOOK::WINDOW:
      return "window";
    case SVG_PICTURE::LOOK::HOLE:
      return "hole";
    case SVG_PICTURE::LOOK::FAULT:
      return "fault";
    case SVG_PICTURE::LOOK::SOURCE:
      return "source";
    case SVG_PICTURE::LOOK::STEP:
      return "step";
    case SVG_PICTURE::LOOK::RESULT:
      return "result";
    case SVG_PICTURE::LOOK::IDLE:
      break;
  }
  return "idle";
}

std::string_view name_of(SVG_PICTURE::ANCHOR anchor) {
  switch (anchor) {
    case SVG_PICTURE::ANCHOR::START:
      return "start";
    case SVG_PICTURE::ANCHOR::MIDDLE:
      return "middle";
    case SVG_PICTURE::ANCHOR::END:
      break;
  }
  return "end";
}

std::string_view class_of(SVG_PICTURE::FONT font) {
  switch (font) {
    case SVG_PICTURE::FONT::TITLE:
      return "title";
    case SVG_PICTURE::FONT::NAME:
      return "name";
    case SVG_PICTURE::FONT::SMALL:
      break;
  }
  return "small";
}

}  // namespace

SVG_PICTURE::SVG_PICTURE(int width, std::string_view title)
    : m_width(width), m_title(escape_markup(title)) {}

void SVG_PICTURE::reach(int y) {
  m_bottom = std::max(m_bottom, y);
}

void SVG_PICTURE::add_box(const BOX& box, LOOK look, std::string_view hint) {
  reach(box.y + box.height);
  m_body += fmt::format(
      "<rect class=\"{}\" x=\"{}\" y=\"{}\" width=\"{}\" height=\"{}\"><title>{}</title></rect>\n",
      class_of(look), box.x, box.y, box.width, box.height, escape_markup(hint));
}

void SVG_PICTURE::add_link(const BOX& from, const BOX& to) {
  const int begin_x = from.x + from.width;
  const int begin_y = from.y + from.height / 2;
  const int end_y = to.y + to.height / 2;
  const int middle = (begin_x + to.x) / 2;
  m_body += fmt::format("<path class=\"line\" d=\"M{} {}H{}V{}H{}\"/>\n", begin_x, begin_y, middle,
                        end_y, to.x);
}

void SVG_PICTURE::add_line(int x1, int y1, int x2, int y2) {
  reach(std::max(y1, y2));
  m_body += fmt::format("<path class=\"line\" d=\"M{} {}L{} {}\"/>\n", x1, y1, x2, y2);
}

void SVG_PICTURE::add_text(int x, int y, ANCHOR anchor, FONT font, std::string_view text) {
  reach(y);
  m_body += fmt::format("<text class=\"{}\" x=\"{}\" y=\"{}\" text-anchor=\"{}\">{}</text>\n",
                        class_of(font), x, y, name_of(anchor), escape_markup(text));
}

std::string SVG_PICTURE::make_element(std::string_view style) const {
  const int height = m_bottom + k_margin;
  return fmt::format(
      "<svg class=\"sbd-picture\" xmlns=\"http://www.w3.org/2000/svg\" width=\"{0}\" "
      "height=\"{1}\" viewBox=\"0 0 {0} {1}\" role=\"img\" aria-label=\"{2}\">\n"
      "<title>{2}</title>\n{3}{4}</svg>\n",
      m_width, height, m_title, style, m_body);
}

std::string SVG_PICTURE::element() const {
  return make_element({});
}

std::string SVG_PICTURE::file() const {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" +
         make_element(fmt::format("<style>\n{}{}</style>\n"
                                  "<rect class=\"paper\" width=\"100%\" height=\"100%\"/>\n",
                                  k_svg_style, k_paper_style));
}

}  // namespace sbd_tool
