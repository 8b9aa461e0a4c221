#pragma once

#include <json/value.h>

#include <memory>
#include <string>
#include <vector>

#include "tools/vemora-triggers/invocation/options.h"
#include "vemora/platform/records/camera.h"
#include "vemora/platform/records/eta_camera.h"
#include "vemora/platform/records/metadata_event_subscription.h"
#include "vemora/platform/records/trigger.h"

namespace kuv::vemora::tools {

// Records and their parts in words.
Json::Value trigger_to_json(const trigger& record);
Json::Value source_to_json(const Trigger_Source& source);
std::string describe(const Trigger_Source& source);

template <class Record>
using Records = std::vector<std::shared_ptr<Record>>;

void print_triggers(const Options& options, const Records<trigger>& records);
void print_subscriptions(const Options& options,
                         const Records<metadata_event_subscription>& records);
void print_detection(const Options& options, const Records<eta_camera>& records);
void print_cameras(const Options& options, const Records<camera>& records);

}  // namespace kuv::vemora::tools
