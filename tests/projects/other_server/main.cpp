// Started with all symbols looked up at once, it shows that the four libraries are all that the
// product needs.
#include <iostream>

#include "vemora/trigger_parser/vemora_trigger_parser.h"

int main() {
  Json::Value document;
  document["triggerMapping"] = Json::arrayValue;
  kuv::vemora::Vemora_Trigger_Parser parser(nullptr, 1);
  const std::size_t associations = parser.parse_trigger_mapping(document).size();
  std::cout << "another server, " << associations << " associations\n";
  return associations == 0 ? 0 : 1;
}
