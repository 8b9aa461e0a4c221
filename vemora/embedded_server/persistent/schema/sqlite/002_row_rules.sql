-- What no row may be, whoever writes it. Each rule is called after its table.
-- Subscriptions have none: an empty topic is a topic too, and passes tidy up or name those that have a
-- camera or a topic alone.
-- SQLite adds no rule to a table that is there: these are made anew, as new_..., and take over the rows.

CREATE TABLE new_site (
  id INTEGER PRIMARY KEY CONSTRAINT site_id_check CHECK (id = 1),
  schema_version INTEGER NOT NULL CONSTRAINT site_schema_version CHECK (schema_version > 0),
  server_id INTEGER
);
INSERT INTO new_site SELECT id, schema_version, server_id FROM site;
DROP TABLE site;
ALTER TABLE new_site RENAME TO site;

CREATE TABLE new_document (
  kind TEXT PRIMARY KEY NOT NULL CONSTRAINT document_kind CHECK (kind IN ('config', 'mapping')),
  text BLOB NOT NULL
) WITHOUT ROWID;
INSERT INTO new_document SELECT kind, text FROM document;
DROP TABLE document;
ALTER TABLE new_document RENAME TO document;

CREATE TABLE new_camera (
  id INTEGER PRIMARY KEY,
  name TEXT NOT NULL,
  object_detection INTEGER NOT NULL
    CONSTRAINT camera_object_detection CHECK (object_detection IN (0, 1)),
  motion_detection INTEGER NOT NULL
    CONSTRAINT camera_motion_detection CHECK (motion_detection IN (0, 1))
);
INSERT INTO new_camera SELECT id, name, object_detection, motion_detection FROM camera;
DROP TABLE camera;
ALTER TABLE new_camera RENAME TO camera;

-- A camera that says nothing has no document.
CREATE TABLE new_capability_document (
  id INTEGER PRIMARY KEY,
  text TEXT NOT NULL CONSTRAINT capability_document_text CHECK (text <> '')
);
INSERT INTO new_capability_document SELECT id, text FROM capability_document;
DROP TABLE capability_document;
ALTER TABLE new_capability_document RENAME TO capability_document;

CREATE TABLE new_schedule (
  id INTEGER PRIMARY KEY,
  name TEXT NOT NULL,
  usable INTEGER NOT NULL CONSTRAINT schedule_usable CHECK (usable IN (0, 1))
);
INSERT INTO new_schedule SELECT id, name, usable FROM schedule;
DROP TABLE schedule;
ALTER TABLE new_schedule RENAME TO schedule;

CREATE TABLE new_meta_type (
  name TEXT NOT NULL,
  type TEXT NOT NULL CONSTRAINT meta_type_type CHECK (type <> ''),
  PRIMARY KEY (name, type)
) WITHOUT ROWID;
INSERT INTO new_meta_type SELECT name, type FROM meta_type;
DROP TABLE meta_type;
ALTER TABLE new_meta_type RENAME TO meta_type;

-- Types above 4 have no fields yet; those of type 3 (external) are dropped before they are stored. A
-- track may be lost for no time at all (dropout 0), presence and motion may not.
CREATE TABLE new_trigger_source (
  trigger_id INTEGER NOT NULL,
  position INTEGER NOT NULL CONSTRAINT trigger_source_position CHECK (position >= 0),
  type INTEGER NOT NULL CONSTRAINT trigger_source_type CHECK (type >= 0 AND type <> 3),
  onvif_topic TEXT,
  object_type TEXT,
  motion_required INTEGER CONSTRAINT trigger_source_motion_required CHECK (motion_required IN (0, 1)),
  activity_mode INTEGER,
  min_duration_us INTEGER CONSTRAINT trigger_source_min_duration CHECK (min_duration_us > 0),
  dropout_us INTEGER,
  PRIMARY KEY (trigger_id, position),
  CONSTRAINT trigger_source_onvif_topic
    CHECK ((type = 0) = (onvif_topic IS NOT NULL) AND onvif_topic <> ''),
  CONSTRAINT trigger_source_object_type
    CHECK ((type = 2) = (object_type IS NOT NULL) AND object_type <> ''),
  CONSTRAINT trigger_source_search
    CHECK ((object_type IS NULL) = (motion_required IS NULL)),
  CONSTRAINT trigger_source_activity_mode
    CHECK (activity_mode IS NULL OR (type = 2 AND activity_mode IN (0, 1))
      OR (type = 4 AND activity_mode = 0)),
  CONSTRAINT trigger_source_activity
    CHECK ((activity_mode IS NULL) = (min_duration_us IS NULL)
      AND (activity_mode IS NULL) = (dropout_us IS NULL)),
  CONSTRAINT trigger_source_dropout
    CHECK (dropout_us > 0 OR (dropout_us = 0 AND activity_mode = 1))
) WITHOUT ROWID;
INSERT INTO new_trigger_source
  SELECT trigger_id, position, type, onvif_topic, object_type, motion_required, activity_mode,
    min_duration_us, dropout_us FROM trigger_source;
DROP TABLE trigger_source;
ALTER TABLE new_trigger_source RENAME TO trigger_source;

CREATE TABLE new_id_allocation (
  kind TEXT PRIMARY KEY NOT NULL
    CONSTRAINT id_allocation_kind CHECK (kind IN ('subscription', 'eta_camera')),
  next_id INTEGER NOT NULL
) WITHOUT ROWID;
INSERT INTO new_id_allocation SELECT kind, next_id FROM id_allocation;
DROP TABLE id_allocation;
ALTER TABLE new_id_allocation RENAME TO id_allocation;
