#include "tools/text_device.h"

#include "play/engine_device.h"
#include "tools/built_text.h"

std::unique_ptr<Device> startTextDevice(const std::string& name, const std::string& text,
                                        const PlayConstants& constants, TextCoverage* coverage) {
  std::unique_ptr<Device> device = startBuiltDevice(text, constants, coverage);
  if (device != nullptr) return device;
  const std::string shownName = name == "-" ? "<stdin>" : name;
  const NamedValues values(constants.begin(), constants.end());
  // Whatever keeps a device from its start is an error of the text, which this reports.
  static_cast<void>(buildText(shownName, text, values));
  return nullptr;
}
