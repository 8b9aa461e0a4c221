-- Ids are unsigned 64-bit numbers, stored as the same 64 bits in a signed column: ids up to
-- 9223372036854775807 read as they are, larger ones as negative numbers.
-- Link tables are keyed by both ends, hold no position and declare no foreign key: the one writer is
-- a pass, which holds all records and links while it works and refuses what does not fit.

-- What the database is: one row, written when it is made.
CREATE TABLE site (
  id INTEGER PRIMARY KEY CHECK (id = 1),
  schema_version INTEGER NOT NULL,
  server_id INTEGER                  -- the one server that works on it; NULL until the first pass
);

-- The accepted documents as they were written, so that a refresh after a restart works on them.
CREATE TABLE document (
  kind TEXT PRIMARY KEY NOT NULL,    -- 'config' or 'mapping'
  text BLOB NOT NULL                 -- its bytes, which need be no UTF-8
) WITHOUT ROWID;

CREATE TABLE server (
  id INTEGER PRIMARY KEY,
  name TEXT NOT NULL
);
CREATE TABLE server_tag (
  record_id INTEGER NOT NULL,
  name TEXT NOT NULL,
  value TEXT,                        -- NULL: the tag has no value
  PRIMARY KEY (record_id, name)
) WITHOUT ROWID;

CREATE TABLE camera (
  id INTEGER PRIMARY KEY,
  name TEXT NOT NULL,
  object_detection INTEGER NOT NULL, -- 0 or 1: takes part in object detection
  motion_detection INTEGER NOT NULL  -- 0 or 1: takes part in motion detection
);
CREATE TABLE camera_tag (
  record_id INTEGER NOT NULL,
  name TEXT NOT NULL,
  value TEXT,
  PRIMARY KEY (record_id, name)
) WITHOUT ROWID;

-- Capabilities as JSON. Cameras of one model say the same, so each text is kept once.
CREATE TABLE capability_document (
  id INTEGER PRIMARY KEY,
  text TEXT NOT NULL
);
CREATE TABLE camera_capability (
  camera_id INTEGER PRIMARY KEY,
  document_id INTEGER NOT NULL
);

CREATE TABLE schedule (
  id INTEGER PRIMARY KEY,
  name TEXT NOT NULL,
  usable INTEGER NOT NULL            -- 0: triggers that refer to it are inactive
);

CREATE TABLE event_category (
  id INTEGER PRIMARY KEY,
  name TEXT NOT NULL
);
CREATE INDEX event_category_by_name ON event_category (name);

-- General object types: a row for each type that a name stands for; that may be general again.
CREATE TABLE meta_type (
  name TEXT NOT NULL,
  type TEXT NOT NULL,
  PRIMARY KEY (name, type)
) WITHOUT ROWID;

-- One row a configured trigger. (TRIGGER is a word of SQL.)
CREATE TABLE trigger_record (
  id INTEGER PRIMARY KEY,
  name TEXT NOT NULL
);
CREATE TABLE trigger_schedule (
  record_id INTEGER NOT NULL,        -- the trigger
  linked_id INTEGER NOT NULL,        -- the schedule
  PRIMARY KEY (record_id, linked_id)
) WITHOUT ROWID;
CREATE TABLE trigger_source (
  trigger_id INTEGER NOT NULL,
  position INTEGER NOT NULL,         -- place in the trigger's ordered set of sources, from 0
  type INTEGER NOT NULL,             -- 0 onvif-metadata, 1 metadata-event, 2 object-detection,
                                     -- 4 motion-detection, 5 audio-detection
  onvif_topic TEXT,                  -- of type 0
  object_type TEXT,                  -- of type 2
  motion_required INTEGER,           -- of type 2: 0 or 1
  activity_mode INTEGER,             -- 0 object presence, 1 object track; NULL: no duration asked for
  min_duration_us INTEGER,           -- microseconds
  dropout_us INTEGER,                -- microseconds
  PRIMARY KEY (trigger_id, position)
) WITHOUT ROWID;

-- Topic subscriptions have a camera and a topic and are the only ones for that pair; generic ones
-- have neither.
CREATE TABLE subscription (
  id INTEGER PRIMARY KEY,
  name TEXT NOT NULL,
  category_id INTEGER,
  onvif_topic TEXT,
  camera_id INTEGER
);
CREATE UNIQUE INDEX subscription_by_camera_and_topic ON subscription (camera_id, onvif_topic)
  WHERE camera_id IS NOT NULL;
CREATE TABLE subscription_tag (
  record_id INTEGER NOT NULL,
  name TEXT NOT NULL,
  value TEXT,
  PRIMARY KEY (record_id, name)
) WITHOUT ROWID;
CREATE TABLE subscription_camera (
  record_id INTEGER NOT NULL,        -- the subscription
  linked_id INTEGER NOT NULL,        -- the camera
  PRIMARY KEY (record_id, linked_id)
) WITHOUT ROWID;
CREATE TABLE subscription_trigger (
  record_id INTEGER NOT NULL,        -- the subscription
  linked_id INTEGER NOT NULL,        -- the trigger that it serves
  PRIMARY KEY (record_id, linked_id)
) WITHOUT ROWID;
CREATE INDEX subscription_by_trigger ON subscription_trigger (linked_id, record_id);

-- Object-detection maps, one a camera.
CREATE TABLE eta_camera (
  id INTEGER PRIMARY KEY,
  camera_id INTEGER NOT NULL UNIQUE
);
CREATE TABLE eta_camera_trigger (
  record_id INTEGER NOT NULL,        -- the detection record
  linked_id INTEGER NOT NULL,        -- the trigger that needs detection there
  PRIMARY KEY (record_id, linked_id)
) WITHOUT ROWID;
CREATE INDEX eta_camera_by_trigger ON eta_camera_trigger (linked_id, record_id);

-- Where to look for the next free id. Not the largest id plus one: an inventory may use that.
CREATE TABLE id_allocation (
  kind TEXT PRIMARY KEY NOT NULL,    -- 'subscription' or 'eta_camera'
  next_id INTEGER NOT NULL
) WITHOUT ROWID;

-- Cameras whose subscriptions changed and whose streams have not been reconciled since.
CREATE TABLE pending_camera (
  camera_id INTEGER PRIMARY KEY
);
