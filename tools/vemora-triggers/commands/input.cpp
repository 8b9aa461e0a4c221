#include "tools/vemora-triggers/commands/input.h"

#include <utility>

namespace kuv::vemora::tools {

using embedded_server::Json_Document;

Json_Document read_input(const Options& options, const std::string& role, const std::string& path) {
  try {
    return Json_Document::read(path, embedded_server::largest_document, options.max_values);
  } catch (const embedded_server::Document_Error& error) {
    throw Unreadable_Document{role, path, {error.what(), error.location}, error.line};
  }
}

Fault_List located(
    const std::vector<embedded_server::Document_Warning>& warnings,
    const std::function<Located_Fault(const embedded_server::Check_Fault&)>& locate) {
  return {warnings.size(), [&](std::size_t number) {
            const embedded_server::Document_Warning& warning = warnings[number];
            Located_Fault fault = locate(warning.fault);
            fault.warning = warning.code;
            if (warning.stored) {
              fault.document = warning.stored.get();
            }
            return fault;
          }};
}

Trigger_Documents::Trigger_Documents(const Options& options, std::string config_path,
                                     std::string mapping_path)
    : config_path_(std::move(config_path)),
      mapping_path_(std::move(mapping_path)),
      config_(read_input(options, "config", config_path_)) {
  if (!mapping_path_.empty()) {
    mapping_ = read_input(options, "mapping", mapping_path_);
  }
}

Located_Fault Trigger_Documents::locate(const embedded_server::Check_Fault& found) const {
  const bool in_config = found.document == "config";
  return {found.document,
          in_config ? config_path_ : mapping_path_,
          found.fault,
          in_config ? &config_ : mapping(),
          {},
          found.index,
          found.id};
}

}  // namespace kuv::vemora::tools
