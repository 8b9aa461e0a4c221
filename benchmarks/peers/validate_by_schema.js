// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only

// Validates a document by its JSON Schema, as a program without the library would.
//
//     validate_by_schema.js SCHEMA DOCUMENT

const {readFileSync} = require('fs');
const Ajv = require('ajv');

const [schemaPath, documentPath] = process.argv.slice(2);
const schema = JSON.parse(readFileSync(schemaPath, 'utf8'));
// Debian's Ajv is older than this version of the language; it knows all keywords that the schema uses.
delete schema.$schema;
const validate = new Ajv({allErrors: true, logger: false}).compile(schema);
if (!validate(JSON.parse(readFileSync(documentPath, 'utf8')))) {
  console.error(validate.errors);
  process.exit(1);
}
