#include "doc/picture.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <utility>

#include "doc/html.h"
#include "doc/scene.h"

namespace {

// Room around a drawing, and above it for the names of the levels.
constexpr double MARGIN = 14;
constexpr double HEAD = 30;

std::string rounded(double points) { return std::to_string(std::lround(points)); }

// Writes one drawing as SVG.
class SvgWriter {
 public:
  SvgWriter(std::string& html, const DocModel& model, const Scene& scene, const DotDrawing& drawing)
      : html_(html), model_(model), scene_(scene), drawing_(drawing) {}

  void write(const std::string& label) {
    const std::string width = rounded(drawing_.width + 2 * MARGIN);
    const std::string height = rounded(drawing_.height + MARGIN + HEAD);
    html_ += "<svg class=d role=group width=" + width + " height=" + height + " viewBox=\"" +
             rounded(-MARGIN) + " " + rounded(-HEAD) + " " + width + " " + height +
             "\" aria-label=\"" + label + "\">";
    boxes();
    levels();
    html_ += "<g class=e>";
    for (size_t i = 0; i < drawing_.curves.size(); ++i) edge(i);
    html_ += "</g>";
    for (size_t i = 0; i < scene_.nodes.size(); ++i) node(i);
    html_ += "</svg>";
  }

 private:
  // A rectangle that grows with what is put into it.
  struct Box {
    static constexpr double FAR = std::numeric_limits<double>::infinity();
    double left = FAR;
    double top = FAR;
    double right = -FAR;
    double bottom = -FAR;
  };

  // Around those of one prefix, with their prefix above them.
  void boxes() {
    std::map<uint32_t, Box> boxes;
    for (size_t i = 0; i < scene_.nodes.size(); ++i) {
      const DotNode& node = scene_.graph.nodes[i];
      if (!node.cluster) continue;
      const DotPoint& centre = drawing_.centres[i];
      Box& box = boxes[*node.cluster];
      box.left = std::min(box.left, centre.x - node.width / 2);
      box.top = std::min(box.top, centre.y - node.height / 2);
      box.right = std::max(box.right, centre.x + node.width / 2);
      box.bottom = std::max(box.bottom, centre.y + node.height / 2);
    }
    constexpr double PADDING = 6;
    for (const auto& [cluster, box] : boxes) {
      html_ += "<rect class=b x=" + rounded(box.left - PADDING) +
               " y=" + rounded(box.top - PADDING) +
               " width=" + rounded(box.right - box.left + 2 * PADDING) +
               " height=" + rounded(box.bottom - box.top + 2 * PADDING) + " rx=8 />";
    }
  }

  void levels() {
    std::map<uint32_t, double> columns;
    for (size_t i = 0; i < scene_.nodes.size(); ++i) {
      if (scene_.nodes[i].isGroup) continue;
      columns[model_.parameters[scene_.nodes[i].place].level] = drawing_.centres[i].x;
    }
    for (const auto& [level, x] : columns) {
      html_ +=
          "<text class=l x=" + rounded(x) + " y=-14>level " + std::to_string(level) + "</text>";
    }
  }

  void edge(size_t i) {
    const std::vector<DotPoint>& curve = drawing_.curves[i];
    if (curve.empty()) return;
    const auto& [from, to] = scene_.graph.edges[i];
    html_ += "<path data-e=\"" + std::to_string(from) + " " + std::to_string(to) + "\" d=\"M";
    for (size_t point = 0; point < curve.size(); ++point) {
      if (point == 1) html_ += "C";
      if (point > 1) html_ += ' ';
      html_ += rounded(curve[point].x) + " " + rounded(curve[point].y);
    }
    html_ += "\"/>";
  }

  void node(size_t i) {
    const SceneNode& node = scene_.nodes[i];
    const DotNode& box = scene_.graph.nodes[i];
    const DotPoint& centre = drawing_.centres[i];
    const std::string place = std::to_string(node.place);
    if (node.isGroup) {
      html_ += "<a class=\"n g\" data-g=" + place + " href=\"#g-" + place + "\">";
    } else {
      const DocParameter& parameter = model_.parameters[node.place];
      html_ += "<a class=\"n " + parameter.access + "\" data-p=" + place + " href=\"" +
               fragment("p", parameter.name) + "\">";
    }
    html_ += "<rect x=" + rounded(centre.x - box.width / 2) +
             " y=" + rounded(centre.y - box.height / 2) + " width=" + rounded(box.width) +
             " height=" + rounded(box.height) + " rx=5 /><text x=" + rounded(centre.x) +
             " y=" + rounded(centre.y + 4) + ">";
    appendEscaped(html_, node.label);
    html_ += "</text></a>";
  }

  std::string& html_;
  const DocModel& model_;
  const Scene& scene_;
  const DotDrawing& drawing_;
};

class PictureWriter {
 public:
  PictureWriter(const DocModel& model, const Scenes& scenes,
                const std::vector<DotDrawing>& drawings)
      : model_(model), scenes_(scenes), drawings_(drawings) {}

  std::string write() {
    const bool hasGroups = scenes_.scenes.size() > 1;
    html_ =
        "<section id=picture aria-labelledby=picture-title><h2 id=picture-title>What follows "
        "what</h2>\n<p class=hint>From left to right: a parameter follows those to the left that "
        "lead to it. ";
    html_ += hasGroups ? "A node is a group of parameters with one prefix; open it to see them. "
                       : "Those with one prefix share a box. ";
    html_ +=
        "Point at a node to see all that it follows and all that follows it.</p>\n"
        "<p id=cone role=status></p>\n";
    for (size_t i = 0; i < scenes_.scenes.size(); ++i) figure(i);
    lone();
    graph();
    html_ += "</section>\n";
    return std::move(html_);
  }

 private:
  void figure(size_t i) {
    const Scene& scene = scenes_.scenes[i];
    std::string label = "All parameters";
    if (scene.group) {
      label = escaped(scenes_.groups[*scene.group].title);
      html_ += "<figure id=g-" + std::to_string(*scene.group) +
               " class=o tabindex=-1><figcaption>" + label +
               "<a href=\"#g-all\">All groups</a></figcaption>";
    } else {
      html_ += "<figure id=g-all tabindex=-1>";
    }
    if (scene.isTooDense) {
      html_ += "<p>This is too much for one drawing. ";
      for (const SceneNode& node : scene.nodes) listed(node);
      html_ += "</p>";
    } else {
      html_ += "<div class=v tabindex=0 role=region aria-label=\"Drawing: " + label + "\">";
      SvgWriter(html_, model_, scene, drawings_[i]).write(label);
      html_ += "</div>";
    }
    html_ += "</figure>\n";
  }

  void listed(const SceneNode& node) {
    if (node.isGroup) {
      html_ += "<a href=\"#g-" + std::to_string(node.place) + "\">" + escaped(node.label) + "</a> ";
    } else {
      appendName(html_, model_, model_.parameters[node.place].name);
      html_ += ' ';
    }
  }

  void lone() {
    if (scenes_.lone.empty()) return;
    const size_t count = scenes_.lone.size();
    html_ += "<details><summary>" + std::to_string(count) +
             (count == 1 ? " parameter is on its own" : " parameters are on their own") +
             "</summary><p class=lone>";
    for (const size_t place : scenes_.lone) {
      appendName(html_, model_, model_.parameters[place].name);
      html_ += ' ';
    }
    html_ += "</p></details>\n";
  }

  // Who follows whom, by place, for the script that shows what belongs to a node.
  void graph() {
    html_ += "<script type=\"application/json\" id=\"graph\">{\"follows\":[";
    for (const DocParameter& parameter : model_.parameters) {
      if (&parameter != &model_.parameters.front()) html_ += ',';
      html_ += '[';
      numbers(parameter.follows);
      html_ += ']';
    }
    html_ += "],\"groups\":[";
    for (const DocGroup& group : scenes_.groups) {
      if (&group != &scenes_.groups.front()) html_ += ',';
      std::string list;
      for (const size_t member : group.members) {
        list += (list.empty() ? "" : ",") + std::to_string(member);
      }
      html_ += "[" + list + "]";
    }
    html_ += "]}</script>\n";
  }

  void numbers(const std::vector<std::string>& names) {
    std::string list;
    for (const std::string& name : names) {
      const auto place = model_.places.find(name);
      if (place == model_.places.end()) continue;
      list += (list.empty() ? "" : ",") + std::to_string(place->second);
    }
    html_ += list;
  }

  const DocModel& model_;
  const Scenes& scenes_;
  const std::vector<DotDrawing>& drawings_;
  std::string html_;
};

}  // namespace

DocPicture makePicture(const DocModel& model) {
  Scenes scenes = scenesOf(model);
  if (scenes.scenes.empty()) return {};
  std::vector<DotGraph> graphs;
  for (Scene& scene : scenes.scenes) {
    // What is too dense has its place, but nothing to draw.
    graphs.push_back(scene.isTooDense ? DotGraph() : scene.graph);
  }
  std::vector<DotDrawing> drawings;
  std::string failure = drawGraphs(graphs, drawings);
  if (!failure.empty()) return {{}, std::move(failure)};
  return {PictureWriter(model, scenes, drawings).write(), {}};
}
