// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <json/value.h>

#include <boost/thread/shared_mutex.hpp>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "vemora/platform/directive_config_processing.h"
#include "vemora/platform/export.h"
#include "vemora/platform/logging/source.h"
#include "vemora/platform/records/camera.h"
#include "vemora/platform/records/eta_camera.h"
#include "vemora/platform/records/metadata_event_subscription.h"
#include "vemora/platform/records/trigger.h"
#include "vemora/platform/repositories/repository.h"
#include "vemora/platform/services/capture_manager.h"
#include "vemora/platform/services/meta_type_resolver.h"
#include "vemora/platform/services/trigger_notification_pusher.h"
#include "vemora/trigger_manager/trigger_manager.h"
#include "vemora/trigger_parser/notification_properties.h"
#include "vemora/trigger_parser/trigger_config.h"
#include "vemora/trigger_parser/trigger_config_state.h"
#include "vemora/trigger_parser/trigger_parser.h"

namespace kuv::vemora {

/// The trigger manager of the video-management server.
class VEMORA_API Vemora_Trigger_Manager : public Trigger_Manager {
 public:
  /// Stores the documents and processes nothing: the server decides when the first pass runs, by a
  /// refresh or an update. A missing "triggers" or "triggerMapping" becomes an empty array, a null
  /// document an object that holds one. Throws Json::LogicError when a document is neither null nor
  /// an object.
  ///
  /// The parser is the manager's alone; the other collaborators are shared. A null one is taken,
  /// and shows as Internal_Error<std::logic_error> with a text that names it, where it is needed
  /// first:
  ///  - the parser: in every pass, as a document that could not be read;
  ///  - the repository, and each sub-repository of it: where a record is read or written; it costs
  ///    the trigger that was being applied, and the pass from its clean-up on;
  ///  - the capture manager: in a pass that changed a camera's subscriptions; as any failure to
  ///    reconcile a stream it is logged, and the pass goes on;
  ///  - the pusher: at the end of every pass, which fails;
  ///  - the resolver: in a pass after which an object type is searched for, which fails.
  Vemora_Trigger_Manager(const Json::Value& config, const Json::Value& mapping,
                         std::shared_ptr<Repository> repository,
                         std::shared_ptr<capture::Manager> capture_manager,
                         std::unique_ptr<Trigger_Parser> parser,
                         std::shared_ptr<Trigger_Notification_Pusher> notification_pusher,
                         std::shared_ptr<Meta_Type_Resolver> meta_type_resolver);

  /// Touches neither the database nor the pusher. No operation may be running.
  ~Vemora_Trigger_Manager() override;

  Vemora_Trigger_Manager(const Vemora_Trigger_Manager&) = delete;
  Vemora_Trigger_Manager& operator=(const Vemora_Trigger_Manager&) = delete;

  Directive_Config_Processing::Result update_config(const Json::Value& config) override;
  bool refresh_triggers() override;
  bool refresh_triggers(Trigger_Config_State& state) override;
  Json::Value get_config() override;
  Trigger_Config_State update_trigger_mapping(const Json::Value& mapping) override;
  Json::Value get_trigger_mapping() override;

 private:
  using Camera_List = std::vector<std::shared_ptr<camera>>;
  /// Absent: the trigger is not restricted by camera. Present and empty: no camera matches it.
  using Camera_Selection = std::optional<Camera_List>;
  using Subscription_List = std::vector<std::shared_ptr<metadata_event_subscription>>;
  using ETA_Camera_List = std::vector<std::shared_ptr<eta_camera>>;

  /// What the parser made of both documents.
  struct Parsed_Config {
    Notification_Properties properties;
    std::vector<Trigger_Config> triggers;
  };

  /// An active trigger on its way through source processing.
  struct Trigger_Details {
    std::shared_ptr<vemora::trigger> trigger;  ///< its record, never null
    const Trigger_Config& config;              ///< valid for the duration of the call
  };

  struct Refresh_Result {
    bool success = false;
    Trigger_Config_State state;
  };

  /// What the caller of a pass gets of the state that the pusher receives. A state has millions of
  /// parts on a large site, so none is copied for who takes the errors alone.
  enum class Answer { whole_state, errors_alone };

  void initialize_();

  /// What both refreshes share. Takes the lock itself.
  Refresh_Result refresh_triggers_(Answer answer);

  // The pass. From here on the lock is held exclusively by the caller, and nothing takes it again.
  Trigger_Config_State process_triggers_(const Json::Value& config, const Json::Value& mapping,
                                         Answer answer);
  Parsed_Config parse_triggers_(const Json::Value& config, const Json::Value& mapping);
  Trigger_Config_State apply_triggers_(Parsed_Config parsed, Answer answer);
  void apply_trigger_(const Trigger_Config& config);
  void finalize_processing_(Answer answer);

  // Trigger records.
  std::shared_ptr<trigger> get_trigger_record_(const Trigger_Config& config);
  std::shared_ptr<trigger> create_trigger_record_(const Trigger_Config& config);
  void update_trigger_record_(const std::shared_ptr<trigger>& record, const Trigger_Config& config);
  void cleanup_stale_records_();
  void record_persistence_failure_(std::string_view message, const trigger& record,
                                   const eta_camera& camera_record);
  void record_persistence_failure_(std::string_view message, const trigger& record,
                                   const metadata_event_subscription& subscription);
  void report_failure_(std::string text);

  // Source subscriptions.
  void process_sources_(const Trigger_Details& details);
  void process_metadata_event_sources_(const Trigger_Details& details,
                                       const Camera_Selection& selection);
  void process_onvif_based_subscriptions_(const Trigger_Details& details,
                                          const Camera_Selection& selection);
  void create_onvif_metadata_source_subscriptions_if_necessary_(const Trigger_Details& details,
                                                                const Camera_List& cameras);
  void create_subscription_if_supported_(const std::shared_ptr<trigger>& trigger_record,
                                         const std::string& topic,
                                         const std::shared_ptr<camera>& camera_record);
  void update_onvif_metadata_source_subscriptions_if_necessary_(const Trigger_Details& details,
                                                                const Camera_List& cameras);
  void process_generic_metadata_source_subscriptions_(const Trigger_Details& details);
  std::map<std::string, Camera_List> get_cameras_that_need_subscriptions_(
      const std::vector<std::string>& topics, const Camera_List& cameras);
  void add_trigger_to_subscriptions_(const std::shared_ptr<trigger>& trigger_record,
                                     const Subscription_List& subscriptions);
  void remove_trigger_from_subscriptions_(const std::shared_ptr<trigger>& trigger_record,
                                          const Subscription_List& subscriptions);
  bool update_subscription_record_(
      const std::shared_ptr<metadata_event_subscription>& subscription);

  // Object detection.
  void process_eta_camera_sources_(const Trigger_Details& details,
                                   const Camera_Selection& selection);
  void add_trigger_to_eta_camera_record_(const std::shared_ptr<trigger>& trigger_record,
                                         const std::shared_ptr<camera>& camera_record);
  void remove_trigger_from_eta_camera_records_(const std::shared_ptr<trigger>& trigger_record,
                                               const ETA_Camera_List& detection_maps);
  std::set<Object_Search_Item> expand_search_items_(
      const std::set<Object_Search_Item>& items) const;

  // Stale records and streams.
  void remove_trigger_from_all_records_(const std::shared_ptr<trigger>& trigger_record);
  void gather_stale_subscription_cameras_();
  std::set<std::uint64_t> applied_trigger_ids_() const;
  void update_streams_if_necessary_();

  // The notification pusher.
  void sync_notification_pusher_(Answer answer);
  void hand_over_the_state_(Answer answer);
  void collect_subscriptions_();
  void collect_search_items_();

  kuv::logging::Source logger_;
  Json::Value config_;
  Json::Value trigger_mapping_;
  std::shared_ptr<Repository> repository_;
  std::shared_ptr<capture::Manager> capture_manager_;
  std::shared_ptr<Trigger_Parser> parser_;
  std::shared_ptr<Trigger_Notification_Pusher> notification_pusher_;
  std::shared_ptr<Meta_Type_Resolver> meta_type_resolver_;
  boost::shared_mutex mutex_;
  std::set<std::uint64_t> cameras_to_reconcile_;  ///< of the running pass
  Trigger_Config_State state_;                    ///< of the running pass
};

}  // namespace kuv::vemora
