// A drawing of boxes, lines and texts.
#ifndef TOOLS_SVG_PICTURE_H
#define TOOLS_SVG_PICTURE_H

#include <string>
#include <string_view>

namespace sbd_tool {

// The colours of all pictures, light and dark. A page with pictures in it has them in its style.
extern const char k_svg_style[];

class SVG_PICTURE {
 public:
  // What a shape is; the style has the colours.
  enum class LOOK { WINDOW, HOLE, FAULT, SOURCE, STEP, RESULT, IDLE };
  enum class ANCHOR { START, MIDDLE, END };
  enum class FONT { TITLE, NAME, SMALL };

  struct BOX {
    int x;
    int y;
    int width;
    int height;
  };

  // `title` is what the picture shows, for those who don't see it.
  SVG_PICTURE(int width, std::string_view title);

  // `hint` appears while the mouse is over the box.
  void add_box(const BOX& box, LOOK look, std::string_view hint);
  // From the middle of a box's right edge to that of another one's left edge.
  void add_link(const BOX& from, const BOX& to);
  void add_line(int x1, int y1, int x2, int y2);
  // `y` is where the letters stand.
  void add_text(int x, int y, ANCHOR anchor, FONT font, std::string_view text);

  // How far down anything was drawn; the picture ends a margin below that.
  int bottom() const { return m_bottom; }

  // As an element for a page that has the style.
  std::string element() const;
  // As a file.
  std::string file() const;

 private:
  std::string make_element(std::string_view style) const;
  void reach(int y);

  int m_width;
  int m_bottom = 0;
  std::string m_title;
  std::string m_body;
};

}  // namespace sbd_tool

#endif
