// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "tools/vemora-triggers/render/reasons.h"

#include "vemora/embedded_server/texts/printable.h"

namespace kuv::vemora::tools {

Json::Value reasons_to_json(const operations::Reasons& reasons) {
  Json::Value list(Json::arrayValue);
  for (const operations::Reason& reason : reasons) {
    Json::Value object(Json::objectValue);
    object["code"] = reason.code;
    object["text"] = reason.text;
    list.append(object);
  }
  return list;
}

std::string described(const operations::Reasons& reasons) {
  std::string text;
  for (const operations::Reason& reason : reasons) {
    text += text.empty() ? "" : " ";
    text += embedded_server::printable(reason.text);
  }
  return text;
}

}  // namespace kuv::vemora::tools
