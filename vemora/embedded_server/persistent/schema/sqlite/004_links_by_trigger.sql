-- Links stand in the order of their triggers alone: those of one trigger on few pages, and new ones at
-- the end. Passes read all of them, and put those of each record together themselves.

CREATE TABLE new_subscription_trigger (
  record_id INTEGER NOT NULL,        -- the subscription
  linked_id INTEGER NOT NULL,        -- the trigger that it serves
  PRIMARY KEY (linked_id, record_id)
) WITHOUT ROWID;
INSERT INTO new_subscription_trigger (record_id, linked_id)
  SELECT record_id, linked_id FROM subscription_trigger ORDER BY linked_id, record_id;
DROP TABLE subscription_trigger;
ALTER TABLE new_subscription_trigger RENAME TO subscription_trigger;

CREATE TABLE new_eta_camera_trigger (
  record_id INTEGER NOT NULL,        -- the detection record
  linked_id INTEGER NOT NULL,        -- the trigger that needs detection there
  PRIMARY KEY (linked_id, record_id)
) WITHOUT ROWID;
INSERT INTO new_eta_camera_trigger (record_id, linked_id)
  SELECT record_id, linked_id FROM eta_camera_trigger ORDER BY linked_id, record_id;
DROP TABLE eta_camera_trigger;
ALTER TABLE new_eta_camera_trigger RENAME TO eta_camera_trigger;
