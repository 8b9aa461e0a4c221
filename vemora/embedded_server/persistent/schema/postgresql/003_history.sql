-- The history: a row for each pass that changed something, or ended with other errors than the one before.
-- It is begun in the transaction of the pass and finished in that of the documents.
CREATE TABLE history_entry (
  pass bigint PRIMARY KEY CONSTRAINT history_entry_pass CHECK (pass > 0),  -- one more than the last
  at bigint NOT NULL,               -- when it began: seconds since 1970, UTC
  author text COLLATE "C",          -- user@host; NULL: not known
  command text COLLATE "C" NOT NULL, -- 'apply', 'refresh', ...; 'migration': found by this step
  note text COLLATE "C",            -- what its author said about it
  status integer NOT NULL           -- 0 begun and not finished, 1 done, 2 failed
    CONSTRAINT history_entry_status CHECK (status IN (0, 1, 2)),
  error_count bigint NOT NULL CONSTRAINT history_entry_error_count CHECK (error_count >= 0),
  errors text COLLATE "C",          -- digest of their texts, each after its length; NULL: none
  config text COLLATE "C",          -- digest of the configuration that was stored after it; NULL: none
  mapping text COLLATE "C",         -- digest of the mapping that was stored after it; NULL: none
  -- Ids, ascending: "7 9-12".
  triggers_created text COLLATE "C" NOT NULL,
  triggers_changed text COLLATE "C" NOT NULL,
  triggers_deleted text COLLATE "C" NOT NULL,
  reconciled text COLLATE "C" NOT NULL, -- cameras
  -- How many records and links of each kind were written and deleted.
  trigger_writes bigint NOT NULL,
  trigger_deletions bigint NOT NULL,
  subscription_writes bigint NOT NULL,
  subscription_deletions bigint NOT NULL,
  subscription_link_writes bigint NOT NULL,
  subscription_link_deletions bigint NOT NULL,
  detection_writes bigint NOT NULL,
  detection_deletions bigint NOT NULL,
  detection_link_writes bigint NOT NULL,
  detection_link_deletions bigint NOT NULL,
  CONSTRAINT history_entry_errors CHECK ((error_count = 0) = (errors IS NULL))
);

-- The texts that the entries name, each once. Those of the oldest entries are given up first.
CREATE TABLE history_text (
  digest text COLLATE "C" PRIMARY KEY -- SHA-256 of the text, in hexadecimal digits
    CONSTRAINT history_text_digest CHECK (length(digest) = 64),
  size bigint NOT NULL,             -- of the text, in bytes
  text bytea NOT NULL,
  CONSTRAINT history_text_size CHECK (size = length(text))
);

-- The documents that a site has are its first entry. Nobody knows who stored them, and when.
INSERT INTO history_text (digest, size, text)
  SELECT encode(sha256(text), 'hex'), length(text), text FROM document
  ON CONFLICT DO NOTHING;
INSERT INTO history_entry
  SELECT 1, extract(epoch FROM now())::bigint, NULL, 'migration', NULL, 1, 0, NULL,
    (SELECT encode(sha256(text), 'hex') FROM document WHERE kind = 'config'),
    (SELECT encode(sha256(text), 'hex') FROM document WHERE kind = 'mapping'),
    '', '', '', '', 0, 0, 0, 0, 0, 0, 0, 0, 0, 0
  WHERE EXISTS (SELECT 1 FROM document);
