#include "doc/dot.h"

#include <glib.h>
#include <glib/gstdio.h>
#include <sys/wait.h>

#include <charconv>
#include <map>
#include <memory>

namespace {

constexpr double POINTS_PER_INCH = 72;

using GText = std::unique_ptr<gchar, decltype(&g_free)>;

std::string inches(double points) {
  // No locale's comma.
  gchar buffer[G_ASCII_DTOSTR_BUF_SIZE];
  return g_ascii_formatd(buffer, sizeof buffer, "%.3f", points / POINTS_PER_INCH);
}

std::string nodeName(size_t place) { return "n" + std::to_string(place); }

// The nodes by the number that `number` gives for them, those without left out.
template <typename Number>
std::map<uint32_t, std::vector<size_t>> grouped(const DotGraph& graph, const Number& number) {
  std::map<uint32_t, std::vector<size_t>> groups;
  for (size_t i = 0; i < graph.nodes.size(); ++i) {
    if (const std::optional<uint32_t> group = number(graph.nodes[i])) groups[*group].push_back(i);
  }
  return groups;
}

void appendGroup(std::string& text, const std::string& head, const std::vector<size_t>& nodes) {
  text += head;
  for (const size_t node : nodes) text += " " + nodeName(node) + ";";
  text += " }\n";
}

void appendGraph(std::string& text, const DotGraph& graph) {
  text +=
      "digraph {\nrankdir=LR; newrank=true; nodesep=0.12; ranksep=0.9; mclimit=0.5;\n"
      "node [shape=box, fixedsize=true, label=\"\"]; edge [arrowhead=none, tailport=e, "
      "headport=w];\n";
  for (size_t i = 0; i < graph.nodes.size(); ++i) {
    const DotNode& node = graph.nodes[i];
    text +=
        nodeName(i) + " [width=" + inches(node.width) + ", height=" + inches(node.height) + "];\n";
  }
  const auto columns = grouped(graph, [](const DotNode& node) { return node.column; });
  // A chain of unseen nodes keeps the columns in their order.
  std::string chain;
  for (const auto& [column, nodes] : columns) {
    const std::string unseen = "c" + std::to_string(column);
    text += unseen + " [style=invis, width=0.01, height=0.01];\n";
    appendGroup(text, "{ rank=same; " + unseen + ";", nodes);
    chain += (chain.empty() ? "" : " -> ") + unseen;
  }
  if (columns.size() > 1) text += chain + " [style=invis, weight=0];\n";
  const auto clusters = grouped(graph, [](const DotNode& node) { return node.cluster; });
  for (const auto& [cluster, nodes] : clusters) {
    appendGroup(text, "subgraph cluster" + std::to_string(cluster) + " { margin=10;", nodes);
  }
  for (const auto& [from, to] : graph.edges) text += nodeName(from) + " -> " + nodeName(to) + ";\n";
  text += "}\n";
}

// The words and numbers of the plain form.
class PlainReader {
 public:
  explicit PlainReader(std::string_view text) : rest_(text) {}

  std::string_view word() {
    const size_t from = rest_.find_first_not_of(" \n");
    if (from == std::string_view::npos) return {};
    rest_.remove_prefix(from);
    const std::string_view word = rest_.substr(0, rest_.find_first_of(" \n"));
    rest_.remove_prefix(word.size());
    return word;
  }
  double points() {
    const std::string text(word());
    return g_ascii_strtod(text.c_str(), nullptr) * POINTS_PER_INCH;
  }
  size_t number() { return numberIn(word()); }
  /// The place of a node by its name; nothing for an unseen node.
  std::optional<size_t> node() {
    const std::string_view name = word();
    if (!name.starts_with('n')) return {};
    return numberIn(name.substr(1));
  }
  void skipLine() { rest_.remove_prefix(std::min(rest_.find('\n'), rest_.size())); }

 private:
  static size_t numberIn(std::string_view text) {
    size_t number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
  }

  std::string_view rest_;
};

bool readGraph(PlainReader& reader, const DotGraph& graph, DotDrawing& drawing) {
  if (reader.word() != "graph") return false;
  reader.word();  // the scale
  drawing.width = reader.points();
  drawing.height = reader.points();
  drawing.centres.resize(graph.nodes.size());
  drawing.curves.resize(graph.edges.size());
  std::map<std::pair<size_t, size_t>, size_t> edges;
  for (size_t i = 0; i < graph.edges.size(); ++i) edges.emplace(graph.edges[i], i);
  const auto point = [&] {
    const double x = reader.points();
    return DotPoint{x, drawing.height - reader.points()};
  };
  for (std::string_view word = reader.word(); word != "stop"; word = reader.word()) {
    if (word == "node") {
      const std::optional<size_t> node = reader.node();
      if (node && *node < graph.nodes.size()) drawing.centres[*node] = point();
    } else if (word == "edge") {
      const std::optional<size_t> from = reader.node();
      const std::optional<size_t> to = reader.node();
      const auto edge = edges.find({from.value_or(-1), to.value_or(-1)});
      if (edge != edges.end()) {
        std::vector<DotPoint>& curve = drawing.curves[edge->second];
        for (size_t count = reader.number(); count > 0; --count) curve.push_back(point());
      }
    } else {
      return false;
    }
    reader.skipLine();
  }
  return true;
}

// A file of its own for a text, which goes with it.
class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string& text) {
    gchar* name = nullptr;
    const int file = g_file_open_tmp("ostrel-doc-XXXXXX", &name, nullptr);
    name_.reset(name);
    if (file == -1) return;
    g_close(file, nullptr);
    isWritten_ =
        g_file_set_contents(name, text.data(), static_cast<gssize>(text.size()), nullptr) != FALSE;
  }
  ~TemporaryFile() {
    if (name_ != nullptr) g_unlink(name_.get());
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  [[nodiscard]] bool isWritten() const { return isWritten_; }
  [[nodiscard]] gchar* name() const { return name_.get(); }

 private:
  GText name_{nullptr, g_free};
  bool isWritten_ = false;
};

}  // namespace

std::string dotText(const std::vector<DotGraph>& graphs) {
  std::string text;
  for (const DotGraph& graph : graphs) appendGraph(text, graph);
  return text;
}

bool readPlain(std::string_view plain, const std::vector<DotGraph>& graphs,
               std::vector<DotDrawing>& drawings) {
  PlainReader reader(plain);
  drawings.resize(graphs.size());
  for (size_t i = 0; i < graphs.size(); ++i) {
    if (!readGraph(reader, graphs[i], drawings[i])) return false;
  }
  return true;
}

std::string drawGraphs(const std::vector<DotGraph>& graphs, std::vector<DotDrawing>& drawings) {
  const TemporaryFile input(dotText(graphs));
  if (!input.isWritten()) {
    return std::string("a temporary file cannot be written to ") + g_get_tmp_dir() +
           "; set TMPDIR to another directory";
  }
  gchar program[] = "dot";
  gchar format[] = "-Tplain";
  gchar* arguments[] = {program, format, input.name(), nullptr};
  gchar* output = nullptr;
  GError* error = nullptr;
  int status = 0;
  const bool isRun =
      g_spawn_sync(nullptr, arguments, nullptr,
                   static_cast<GSpawnFlags>(G_SPAWN_SEARCH_PATH | G_SPAWN_STDERR_TO_DEV_NULL),
                   nullptr, nullptr, &output, nullptr, &status, &error) != FALSE;
  const GText plain(output, g_free);
  if (!isRun) {
    const std::string text = error->message;
    g_error_free(error);
    return text + "; install graphviz";
  }
  if (!WIFEXITED(status) || !readPlain(plain.get(), graphs, drawings)) {
    return "dot has failed; see whether \"dot -Tplain\" draws a graph";
  }
  return {};
}
