#include "support/record_texts.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace kuv::test {
namespace {

std::string id_text(bool is_set, std::uint64_t id) {
  return is_set ? std::to_string(id) : "none";
}

std::string in_quotes(const std::optional<std::string>& text) {
  return text ? '"' + *text + '"' : "none";
}

/// Of a map of tags and of a set of them.
template <class Tags>
std::string tag_texts(const Tags& tags) {
  std::vector<std::string> texts;
  for (const auto& [name, info] : tags) {
    texts.push_back(name + (info.value ? '=' + *info.value : ""));
  }
  return fmt::format("[{}]", fmt::join(texts, " "));
}

std::vector<std::uint64_t> camera_ids(const metadata_event_subscription& record) {
  std::vector<std::uint64_t> ids;
  for (const auto& link : record.camera_links) {
    ids.push_back(link.get()->id);
  }
  return ids;
}

}  // namespace

std::string text_of(const Trigger_Source& source) {
  std::string text = fmt::format("type {}", static_cast<int>(source.type));
  if (source.onvif_topic) {
    text += " topic " + in_quotes(source.onvif_topic);
  }
  if (source.search_item) {
    text += fmt::format(" object {}{}", in_quotes(source.search_item->object_type),
                        source.search_item->motion_required ? " in motion" : "");
  }
  if (source.activity_duration) {
    const Activity_Duration& duration = *source.activity_duration;
    text += fmt::format(" mode {} for {}us dropout {}us", static_cast<int>(duration.mode),
                        duration.min_duration.count(), duration.dropout.count());
  }
  return text;
}

std::string text_of(const trigger& record) {
  std::vector<std::string> sources;
  for (const Trigger_Source& source : record.sources) {
    sources.push_back(text_of(source));
  }
  std::vector<std::string> schedules;
  for (const Trigger_Mapping_Entry& entry : record.schedules) {
    schedules.push_back(fmt::format("{} {}{}", entry.schedule->id, entry.schedule->name,
                                    entry.schedule->usable ? "" : " (not usable)"));
  }
  return fmt::format("trigger {} {} schedules [{}] sources [{}]", record.id, in_quotes(record.name),
                     fmt::join(schedules, ", "), fmt::join(sources, ", "));
}

std::string text_of(const metadata_event_subscription& record) {
  const bool bound = static_cast<bool>(record.camera);
  const bool filed = static_cast<bool>(record.category);
  return fmt::format(
      "subscription {} {} camera {} topic {} category {} tags {} cameras [{}] triggers [{}]",
      record.id, in_quotes(record.name), id_text(bound, bound ? record.camera_id() : 0),
      in_quotes(record.onvif_topic), id_text(filed, filed ? record.category.get()->id : 0),
      tag_texts(record.tags), fmt::join(camera_ids(record), " "),
      fmt::join(record.trigger_ids(), " "));
}

std::string text_of(const eta_camera& record) {
  std::vector<std::uint64_t> ids;
  for (const std::shared_ptr<trigger>& held : record.triggers) {
    ids.push_back(held->id);
  }
  return fmt::format("detection {} camera {} triggers [{}]", record.id, record.camera_id(),
                     fmt::join(ids, " "));
}

std::string text_of(const camera& record) {
  return fmt::format("camera {} {}{}{} tags {}", record.id, in_quotes(record.name),
                     record.object_detection ? " objects" : "",
                     record.motion_detection ? " motion" : "", tag_texts(record.tags));
}

Trigger_Source onvif(const std::string& topic) {
  Trigger_Source source;
  source.type = Trigger_Source_Type::onvif_metadata;
  source.onvif_topic = topic;
  return source;
}

Trigger_Source generic_events() {
  Trigger_Source source;
  source.type = Trigger_Source_Type::metadata_event;
  return source;
}

Trigger_Source object_detection(const std::string& type, bool motion_required) {
  Trigger_Source source;
  source.type = Trigger_Source_Type::object_detection;
  source.search_item = Object_Search_Item{type, motion_required};
  return source;
}

Trigger_Source motion_detection() {
  Trigger_Source source;
  source.type = Trigger_Source_Type::motion_detection;
  return source;
}

Trigger_Source audio_detection() {
  Trigger_Source source;
  source.type = Trigger_Source_Type::audio_detection;
  return source;
}

Trigger_Source lasting(Trigger_Source source, Activity_Duration_Mode mode,
                       std::chrono::microseconds least, std::chrono::microseconds dropout) {
  source.activity_duration = Activity_Duration{mode, least, dropout};
  return source;
}

std::shared_ptr<trigger> a_trigger(std::uint64_t id,
                                   std::initializer_list<Trigger_Source> sources) {
  auto record = std::make_shared<trigger>();
  record->id = id;
  record->name = fmt::format("trigger {}", id);
  record->sources = sources;
  return record;
}

}  // namespace kuv::test
