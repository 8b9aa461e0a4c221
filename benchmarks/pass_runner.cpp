// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "benchmarks/pass_runner.h"

#include <optional>
#include <stdexcept>

#include "benchmarks/heap_meter.h"
#include "benchmarks/idle_services.h"
#include "benchmarks/round_trip_meter.h"
#include "benchmarks/stopwatch.h"
#include "vemora/trigger_parser/vemora_trigger_parser.h"

namespace kuv::benchmarks {
namespace {

using namespace vemora;
using namespace vemora::embedded_server;

constexpr std::uint64_t server_id = 1;

}  // namespace

class Pass_Runner::Services {
 public:
  explicit Services(std::shared_ptr<Repository> over) : repository(std::move(over)) {}

  std::shared_ptr<Repository> repository;
  std::shared_ptr<capture::Manager> capture_manager = std::make_shared<Idle_Capture_Manager>();
  std::shared_ptr<Discarding_Pusher> pusher = std::make_shared<Discarding_Pusher>();
  std::shared_ptr<Meta_Type_Resolver> resolver = std::make_shared<Plain_Resolver>();
};

Pass_Runner::Pass_Runner(const std::string& location)
    : database_(Database::open(location, Database::Open_Mode::create_if_absent)),
      services_(std::make_unique<Services>(make_repository(database_))) {
  make_manager();
}

Pass_Runner::~Pass_Runner() = default;

void Pass_Runner::make_manager() {
  manager_ = std::make_unique<Vemora_Trigger_Manager>(
      Json::Value(), Json::Value(), services_->repository, services_->capture_manager,
      std::make_unique<Vemora_Trigger_Parser>(services_->repository, server_id), services_->pusher,
      services_->resolver);
}

Measured_Pass Pass_Runner::run(Measuring measuring, const std::function<bool()>& call,
                               bool expected_success) {
  Measured_Pass measured;
  services_->pusher->forget();
  settle_heap();
  std::optional<Heap_Meter> meter;
  if (measuring == Measuring::heap) {
    meter.emplace();
  }
  const std::size_t round_trips_before = round_trips_so_far();
  const Stopwatch watch;
  bool success = false;
  {
    Pass_Scope pass(database_, server_id);
    success = call();
    pass.end();
    pass.store({}, pass.pending_cameras());
    const Changes& changes = pass.changes();
    measured.links_written =
        changes.subscription_links.added.size() + changes.eta_camera_links.added.size();
    measured.links_deleted =
        changes.subscription_links.deleted.size() + changes.eta_camera_links.deleted.size();
  }
  measured.seconds = watch.seconds();
  measured.peak_heap = meter ? meter->peak() : 0;
  measured.errors = services_->pusher->errors();
  measured.round_trips = round_trips_so_far() - round_trips_before;
  if (success != expected_success) {
    throw std::runtime_error("a pass ended otherwise than it should");
  }
  return measured;
}

Measured_Pass Pass_Runner::update(const Json::Value& config, Measuring measuring,
                                  bool expected_success) {
  return run(
      measuring, [&] { return manager_->update_config(config).success; }, expected_success);
}

Measured_Pass Pass_Runner::refresh(Measuring measuring) {
  return run(
      measuring, [&] { return manager_->refresh_triggers(); }, true);
}

}  // namespace kuv::benchmarks
