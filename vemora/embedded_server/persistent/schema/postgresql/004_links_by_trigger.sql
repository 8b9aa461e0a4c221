-- Links are kept in the order of their triggers alone: one index, to which new ones are added at the end.
-- Passes read all of them, and put those of each record together themselves.

ALTER TABLE subscription_trigger
  DROP CONSTRAINT subscription_trigger_pkey,
  ADD PRIMARY KEY (linked_id, record_id);
DROP INDEX subscription_by_trigger;

ALTER TABLE eta_camera_trigger
  DROP CONSTRAINT eta_camera_trigger_pkey,
  ADD PRIMARY KEY (linked_id, record_id);
DROP INDEX eta_camera_by_trigger;
