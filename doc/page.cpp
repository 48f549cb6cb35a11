#include "doc/page.h"

#include <glib.h>

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string_view>

#include "doc/html.h"
#include "doc/matrix.h"
#include "doc/page_parameter.h"
#include "page_files.h"

namespace {

// The hash by which a policy names an inline script or style.
std::string policyHash(std::string_view text) {
  gsize size = 32;
  guint8 digest[32];
  const std::unique_ptr<GChecksum, decltype(&g_checksum_free)> checksum(
      g_checksum_new(G_CHECKSUM_SHA256), g_checksum_free);
  g_checksum_update(checksum.get(), reinterpret_cast<const guchar*>(text.data()),
                    static_cast<gssize>(text.size()));
  g_checksum_get_digest(checksum.get(), digest, &size);
  const std::unique_ptr<gchar, decltype(&g_free)> base64(g_base64_encode(digest, size), g_free);
  return "'sha256-" + std::string(base64.get()) + "'";
}

// JSON within a script element, which no "</script>" of a text can end.
std::string scriptData(std::string_view json) {
  std::string text;
  for (const char byte : json) {
    if (byte == '<') {
      text += "\\u003c";
    } else {
      text += byte;
    }
  }
  return text;
}

std::string counted(size_t count, const std::string& one, const std::string& many) {
  return std::to_string(count) + " " + (count == 1 ? one : many);
}

// The texts of the places in page.html.
class PageWriter {
 public:
  PageWriter(const DocModel& model, const PageParts& parts) : model_(model), parts_(parts) {}

  std::string write() {
    const std::map<std::string_view, std::function<void()>> places = {
        {"policy", [&] { policy(); }},
        {"title", [&] { appendEscaped(html_, model_.title); }},
        {"style", [&] { html_ += PAGE_CSS; }},
        {"scripts",
         [&] {
           for (const std::string_view script : scripts()) {
             html_.append("<script>").append(script).append("</script>\n");
           }
         }},
        {"summary", [&] { summary(); }},
        {"indexOptions", [&] { indexOptions(); }},
        {"levelOptions", [&] { levelOptions(); }},
        {"parts", [&] { parts(); }},
        {"contents", [&] { contents(); }},
        {"parameters", [&] { parameters(); }},
        {"indices", [&] { indices(); }},
        {"picture", [&] { html_ += parts_.picture; }},
        {"standards", [&] { html_ += matrixHtml(model_); }},
        {"device", [&] { device(); }},
    };
    std::string_view rest = PAGE_HTML;
    for (size_t at = rest.find("{{"); at != std::string_view::npos; at = rest.find("{{")) {
      html_ += rest.substr(0, at);
      const size_t end = rest.find("}}", at);
      places.at(rest.substr(at + 2, end - at - 2))();
      rest.remove_prefix(end + 2);
    }
    html_ += rest;
    return std::move(html_);
  }

 private:
  [[nodiscard]] bool hasDevice() const {
    return !parts_.deviceData.empty() && !parts_.evaluator.empty();
  }

  // In the order in which they run.
  [[nodiscard]] std::vector<std::string_view> scripts() const {
    std::vector<std::string_view> scripts = {PAGE_FILTER_JS, PAGE_PICTURE_JS};
    if (!hasDevice()) return scripts;
    scripts.insert(scripts.end(), {parts_.evaluator, PAGE_WHAT_IF_JS});
    return scripts;
  }

  void policy() {
    html_ += "default-src 'none'; base-uri 'none'; form-action 'none'; style-src " +
             policyHash(PAGE_CSS) + "; script-src";
    for (const std::string_view script : scripts()) html_ += " " + policyHash(script);
  }

  void device() {
    if (!hasDevice()) return;
    html_ += "<script type=\"application/json\" id=\"device-data\">";
    html_ += scriptData(parts_.deviceData) + "</script>\n";
  }

  void summary() {
    html_ += counted(model_.parameters.size(), "parameter", "parameters") + ", " +
             counted(model_.indices.size(), "index", "indices") + ", " +
             counted(model_.levels(), "level", "levels") + ", from <code>";
    appendEscaped(html_, model_.file);
    html_ += "</code>";
    for (const DocConstant& constant : model_.constants) {
      html_ += &constant == &model_.constants.front() ? " with " : ", ";
      html_ += "<code>";
      appendEscaped(html_, constant.name + "=" + constant.value);
      html_ += "</code>";
    }
  }

  void indexOptions() {
    for (const DocIndex& index : model_.indices) {
      html_ += "<option>";
      appendEscaped(html_, index.name);
      html_ += "</option>";
    }
  }

  void levelOptions() {
    for (uint32_t level = 0; level < model_.levels(); ++level) {
      html_ += "<option>" + std::to_string(level) + "</option>";
    }
  }

  // Calls `visit` with each parameter, section by section; `begin` and `end` with each section.
  template <typename Begin, typename Visit, typename End>
  void forEachSection(const Begin& begin, const Visit& visit, const End& end) {
    std::map<std::string_view, std::vector<const DocParameter*>> bySection;
    for (const DocParameter& parameter : model_.parameters) {
      bySection[parameter.section].push_back(&parameter);
    }
    size_t number = 0;
    for (const std::string& section : model_.sections()) {
      begin(section, number++);
      for (const DocParameter* parameter : bySection[section]) visit(*parameter);
      end();
    }
  }

  void contents() {
    forEachSection(
        [&](const std::string& section, size_t number) {
          html_ += "<li>";
          if (!section.empty()) {
            html_ += "<a class=h href=\"#s-" + std::to_string(number) + "\">";
            appendEscaped(html_, section);
            html_ += "</a>";
          }
          html_ += "<ul>";
        },
        [&](const DocParameter& parameter) {
          html_ += "<li><a href=\"" + fragment("p", parameter.name) + "\">";
          appendEscaped(html_, parameter.name);
          html_ += "</a>";
        },
        [&] { html_ += "</ul>\n"; });
  }

  void parameters() {
    forEachSection(
        [&](const std::string& section, size_t number) {
          html_ += "<section class=g id=s-" + std::to_string(number) + ">";
          if (section.empty()) return;
          html_ += "<h3 class=g>";
          appendEscaped(html_, section);
          html_ += "</h3>";
        },
        [&](const DocParameter& parameter) {
          appendParameter(html_, model_, parameter, parameter.section.empty() ? 3 : 4);
        },
        [&] { html_ += "</section>\n"; });
  }

  // Links to the parts of the page that there are.
  void parts() {
    const auto add = [&](std::string_view id, std::string_view name) {
      html_.append("<li><a href=\"#").append(id).append("\">").append(name).append("</a>\n");
    };
    if (!parts_.picture.empty()) add("picture", "What follows what");
    if (!model_.standards.empty()) add("standards", "Video standards");
    add("parameters", "Parameters");
    if (!model_.indices.empty()) add("indices", "Indices");
  }

  void indices() {
    if (model_.indices.empty()) return;
    html_ += "<section aria-labelledby=indices><h2 id=indices>Indices</h2>\n";
    for (const DocIndex& index : model_.indices) appendIndex(html_, model_, index);
    html_ += "</section>\n";
  }

  const DocModel& model_;
  const PageParts& parts_;
  std::string html_;
};

}  // namespace

std::string pageText(const DocModel& model, const PageParts& parts) {
  return PageWriter(model, parts).write();
}
