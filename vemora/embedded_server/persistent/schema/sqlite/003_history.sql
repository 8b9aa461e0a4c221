-- The history: a row for each pass that changed something, or ended with other errors than the one before.
-- It is begun in the transaction of the pass and finished in that of the documents.
CREATE TABLE history_entry (
  pass INTEGER PRIMARY KEY CONSTRAINT history_entry_pass CHECK (pass > 0),  -- one more than the last
  at INTEGER NOT NULL,               -- when it began: seconds since 1970, UTC
  author TEXT,                       -- user@host; NULL: not known
  command TEXT NOT NULL,             -- 'apply', 'refresh', ...; 'migration': found by this step
  note TEXT,                         -- what its author said about it
  status INTEGER NOT NULL            -- 0 begun and not finished, 1 done, 2 failed
    CONSTRAINT history_entry_status CHECK (status IN (0, 1, 2)),
  error_count INTEGER NOT NULL CONSTRAINT history_entry_error_count CHECK (error_count >= 0),
  errors TEXT,                       -- digest of their texts, each after its length; NULL: none
  config TEXT,                       -- digest of the configuration that was stored after it; NULL: none
  mapping TEXT,                      -- digest of the mapping that was stored after it; NULL: none
  -- Ids, ascending: "7 9-12".
  triggers_created TEXT NOT NULL,
  triggers_changed TEXT NOT NULL,
  triggers_deleted TEXT NOT NULL,
  reconciled TEXT NOT NULL,          -- cameras
  -- How many records and links of each kind were written and deleted.
  trigger_writes INTEGER NOT NULL,
  trigger_deletions INTEGER NOT NULL,
  subscription_writes INTEGER NOT NULL,
  subscription_deletions INTEGER NOT NULL,
  subscription_link_writes INTEGER NOT NULL,
  subscription_link_deletions INTEGER NOT NULL,
  detection_writes INTEGER NOT NULL,
  detection_deletions INTEGER NOT NULL,
  detection_link_writes INTEGER NOT NULL,
  detection_link_deletions INTEGER NOT NULL,
  CONSTRAINT history_entry_errors CHECK ((error_count = 0) = (errors IS NULL))
);

-- The texts that the entries name, each once. Those of the oldest entries are given up first.
CREATE TABLE history_text (
  digest TEXT PRIMARY KEY NOT NULL   -- SHA-256 of the text, in hexadecimal digits
    CONSTRAINT history_text_digest CHECK (length(digest) = 64),
  size INTEGER NOT NULL,             -- of the text, in bytes
  text BLOB NOT NULL,
  CONSTRAINT history_text_size CHECK (size = length(CAST(text AS BLOB)))
);

-- The documents that a site has are its first entry. Nobody knows who stored them, and when. (sha256 is a function
-- of the program that runs this.)
INSERT INTO history_text (digest, size, text)
  SELECT sha256(text), length(CAST(text AS BLOB)), text FROM document WHERE true
  ON CONFLICT DO NOTHING;
INSERT INTO history_entry
  SELECT 1, CAST(strftime('%s', 'now') AS INTEGER), NULL, 'migration', NULL, 1, 0, NULL,
    (SELECT sha256(text) FROM document WHERE kind = 'config'),
    (SELECT sha256(text) FROM document WHERE kind = 'mapping'),
    '', '', '', '', 0, 0, 0, 0, 0, 0, 0, 0, 0, 0
  WHERE EXISTS (SELECT 1 FROM document);
