-- What no row may be, whoever writes it. Each rule is called after its table.
-- Subscriptions have none: an empty topic is a topic too, and passes tidy up or name those that have a
-- camera or a topic alone.

ALTER TABLE site ADD CONSTRAINT site_schema_version CHECK (schema_version > 0);

ALTER TABLE document ADD CONSTRAINT document_kind CHECK (kind IN ('config', 'mapping'));

-- A camera that says nothing has no document.
ALTER TABLE capability_document ADD CONSTRAINT capability_document_text CHECK (text <> '');

ALTER TABLE meta_type ADD CONSTRAINT meta_type_type CHECK (type <> '');

-- Types above 4 have no fields yet; those of type 3 (external) are dropped before they are stored. A
-- track may be lost for no time at all (dropout 0), presence and motion may not.
ALTER TABLE trigger_source
  ADD CONSTRAINT trigger_source_position CHECK (position >= 0),
  ADD CONSTRAINT trigger_source_type CHECK (type >= 0 AND type <> 3),
  ADD CONSTRAINT trigger_source_min_duration CHECK (min_duration_us > 0),
  ADD CONSTRAINT trigger_source_onvif_topic
    CHECK ((type = 0) = (onvif_topic IS NOT NULL) AND onvif_topic <> ''),
  ADD CONSTRAINT trigger_source_object_type
    CHECK ((type = 2) = (object_type IS NOT NULL) AND object_type <> ''),
  ADD CONSTRAINT trigger_source_search
    CHECK ((object_type IS NULL) = (motion_required IS NULL)),
  ADD CONSTRAINT trigger_source_activity_mode
    CHECK (activity_mode IS NULL OR (type = 2 AND activity_mode IN (0, 1))
      OR (type = 4 AND activity_mode = 0)),
  ADD CONSTRAINT trigger_source_activity
    CHECK ((activity_mode IS NULL) = (min_duration_us IS NULL)
      AND (activity_mode IS NULL) = (dropout_us IS NULL)),
  ADD CONSTRAINT trigger_source_dropout
    CHECK (dropout_us > 0 OR (dropout_us = 0 AND activity_mode = 1));

ALTER TABLE id_allocation
  ADD CONSTRAINT id_allocation_kind CHECK (kind IN ('subscription', 'eta_camera'));
