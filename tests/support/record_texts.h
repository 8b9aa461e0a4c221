#pragma once

#include <chrono>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "vemora/platform/records/camera.h"
#include "vemora/platform/records/eta_camera.h"
#include "vemora/platform/records/metadata_event_subscription.h"
#include "vemora/platform/records/trigger.h"

namespace kuv::test {

using namespace kuv::vemora;

// Stored records as one line of text each: everything in them, so that two of them are the same
// record state exactly when their texts are the same.

std::string text_of(const trigger& record);
std::string text_of(const metadata_event_subscription& record);
std::string text_of(const eta_camera& record);
/// Without the capabilities.
std::string text_of(const camera& record);

std::string text_of(const Trigger_Source& source);

/// "nothing" for a null pointer.
template <class Record>
std::string text_of(const std::shared_ptr<Record>& record) {
  return record ? text_of(*record) : "nothing";
}

template <class Record>
std::vector<std::string> texts_of(const std::vector<std::shared_ptr<Record>>& records) {
  std::vector<std::string> texts;
  for (const std::shared_ptr<Record>& record : records) {
    texts.push_back(text_of(record));
  }
  return texts;
}

template <class Record>
std::vector<std::uint64_t> ids_of(const std::vector<std::shared_ptr<Record>>& records) {
  std::vector<std::uint64_t> ids;
  for (const std::shared_ptr<Record>& record : records) {
    ids.push_back(record->id);
  }
  return ids;
}

// Sources of triggers.

Trigger_Source onvif(const std::string& topic);
Trigger_Source generic_events();
Trigger_Source object_detection(const std::string& type, bool motion_required = false);
Trigger_Source motion_detection();
Trigger_Source audio_detection();
Trigger_Source lasting(Trigger_Source source, Activity_Duration_Mode mode,
                       std::chrono::microseconds least, std::chrono::microseconds dropout);

/// A trigger record of that id, named after it.
std::shared_ptr<trigger> a_trigger(std::uint64_t id,
                                   std::initializer_list<Trigger_Source> sources = {});

}  // namespace kuv::test
