-- Ids are unsigned 64-bit numbers, stored as the same 64 bits in a signed column: ids up to
-- 9223372036854775807 read as they are, larger ones as negative numbers.
-- Texts order by their bytes. Those of any length are no keys: ordered indexes take short ones only.
-- Link tables are keyed by both ends, hold no position and declare no foreign key: the one writer is
-- a pass, which holds all records and links while it works and refuses what does not fit.

-- What the database is: one row, written when it is made.
CREATE TABLE site (
  id integer PRIMARY KEY CHECK (id = 1),
  schema_version integer NOT NULL,
  server_id bigint                  -- the one server that works on it; NULL until the first pass
);

-- The accepted documents as they were written, so that a refresh after a restart works on them.
CREATE TABLE document (
  kind text COLLATE "C" PRIMARY KEY,    -- 'config' or 'mapping'
  text bytea NOT NULL                   -- its bytes, which need be no UTF-8
);

CREATE TABLE server (
  id bigint PRIMARY KEY,
  name text COLLATE "C" NOT NULL
);
CREATE TABLE server_tag (
  record_id bigint NOT NULL,
  name text COLLATE "C" NOT NULL,
  value text COLLATE "C"             -- NULL: the tag has no value
);
CREATE INDEX server_tag_by_record ON server_tag (record_id);

CREATE TABLE camera (
  id bigint PRIMARY KEY,
  name text COLLATE "C" NOT NULL,
  object_detection boolean NOT NULL, -- takes part in object detection
  motion_detection boolean NOT NULL -- takes part in motion detection
);
CREATE TABLE camera_tag (
  record_id bigint NOT NULL,
  name text COLLATE "C" NOT NULL,
  value text COLLATE "C"
);
CREATE INDEX camera_tag_by_record ON camera_tag (record_id);

-- Capabilities as JSON. Cameras of one model say the same, so each text is kept once.
CREATE TABLE capability_document (
  id bigint PRIMARY KEY,
  text text COLLATE "C" NOT NULL
);
CREATE TABLE camera_capability (
  camera_id bigint PRIMARY KEY,
  document_id bigint NOT NULL
);

CREATE TABLE schedule (
  id bigint PRIMARY KEY,
  name text COLLATE "C" NOT NULL,
  usable boolean NOT NULL            -- false: triggers that refer to it are inactive
);

CREATE TABLE event_category (
  id bigint PRIMARY KEY,
  name text COLLATE "C" NOT NULL
);
CREATE INDEX event_category_by_name ON event_category USING hash (name);

-- General object types: a row for each type that a name stands for; that may be general again.
CREATE TABLE meta_type (
  name text COLLATE "C" NOT NULL,
  type text COLLATE "C" NOT NULL
);

-- One row a configured trigger. (TRIGGER is a word of SQL.)
CREATE TABLE trigger_record (
  id bigint PRIMARY KEY,
  name text COLLATE "C" NOT NULL
);
CREATE TABLE trigger_schedule (
  record_id bigint NOT NULL,        -- the trigger
  linked_id bigint NOT NULL,        -- the schedule
  PRIMARY KEY (record_id, linked_id)
);
CREATE TABLE trigger_source (
  trigger_id bigint NOT NULL,
  position integer NOT NULL,         -- place in the trigger's ordered set of sources, from 0
  type integer NOT NULL,             -- 0 onvif-metadata, 1 metadata-event, 2 object-detection,
                                     -- 4 motion-detection, 5 audio-detection
  onvif_topic text COLLATE "C",                  -- of type 0
  object_type text COLLATE "C",                  -- of type 2
  motion_required boolean,           -- of type 2
  activity_mode integer,             -- 0 object presence, 1 object track; NULL: no duration asked for
  min_duration_us bigint,           -- microseconds
  dropout_us bigint,                -- microseconds
  PRIMARY KEY (trigger_id, position)
);

-- Topic subscriptions have a camera and a topic and are the only ones for that pair; generic ones
-- have neither.
CREATE TABLE subscription (
  id bigint PRIMARY KEY,
  name text COLLATE "C" NOT NULL,
  category_id bigint,
  onvif_topic text COLLATE "C",
  camera_id bigint,
  -- A topic may be longer than what an ordered index takes: this one holds digests, and compares
  -- the texts themselves where those are equal.
  CONSTRAINT subscription_by_camera_and_topic
    EXCLUDE USING hash ((camera_id::text || ' ' || onvif_topic) WITH =)
    WHERE (camera_id IS NOT NULL)
);
CREATE TABLE subscription_tag (
  record_id bigint NOT NULL,
  name text COLLATE "C" NOT NULL,
  value text COLLATE "C"
);
CREATE INDEX subscription_tag_by_record ON subscription_tag (record_id);
CREATE TABLE subscription_camera (
  record_id bigint NOT NULL,        -- the subscription
  linked_id bigint NOT NULL,        -- the camera
  PRIMARY KEY (record_id, linked_id)
);
CREATE TABLE subscription_trigger (
  record_id bigint NOT NULL,        -- the subscription
  linked_id bigint NOT NULL,        -- the trigger that it serves
  PRIMARY KEY (record_id, linked_id)
);
CREATE INDEX subscription_by_trigger ON subscription_trigger (linked_id, record_id);

-- Object-detection maps, one a camera.
CREATE TABLE eta_camera (
  id bigint PRIMARY KEY,
  camera_id bigint NOT NULL UNIQUE
);
CREATE TABLE eta_camera_trigger (
  record_id bigint NOT NULL,        -- the detection record
  linked_id bigint NOT NULL,        -- the trigger that needs detection there
  PRIMARY KEY (record_id, linked_id)
);
CREATE INDEX eta_camera_by_trigger ON eta_camera_trigger (linked_id, record_id);

-- Where to look for the next free id. Not the largest id plus one: an inventory may use that.
CREATE TABLE id_allocation (
  kind text COLLATE "C" PRIMARY KEY,    -- 'subscription' or 'eta_camera'
  next_id bigint NOT NULL
);

-- Cameras whose subscriptions changed and whose streams have not been reconciled since.
CREATE TABLE pending_camera (
  camera_id bigint PRIMARY KEY
);
