// Checks a JSON text from standard input against the schema that is named, and says what is wrong.
const fs = require("fs");
const Ajv = require("ajv/dist/2020");
const addFormats = require("ajv-formats");

const ajv = new Ajv({ allErrors: true, strict: false });
addFormats(ajv);
const validate = ajv.compile(JSON.parse(fs.readFileSync(process.argv[2], "utf8")));
if (!validate(JSON.parse(fs.readFileSync(0, "utf8")))) {
  console.log(JSON.stringify(validate.errors, null, 2));
  process.exitCode = 1;
}
