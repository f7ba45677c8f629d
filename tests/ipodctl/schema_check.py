"""Checks a JSON value against the part of JSON Schema that ipodctl.schema.json uses."""
import re

_TYPES = {
    "object": dict, "array": list, "string": str, "boolean": bool, "null": type(None), "integer": int,
    "number": (int, float),
}
_KNOWN = {"$schema", "$defs", "$ref", "title", "description", "type", "const", "pattern", "minimum", "properties",
          "required", "additionalProperties", "items", "oneOf"}


def _has_type(value, name):
    return isinstance(value, _TYPES[name]) and not (name in ("integer", "number") and isinstance(value, bool))


def _object_errors(value, schema, root, path):
    properties = schema.get("properties", {})
    errors = [f"{path}: {name} is missing" for name in schema.get("required", []) if name not in value]
    if schema.get("additionalProperties") is False:
        errors += [f"{path}: {name} is not in the schema" for name in value if name not in properties]
    for name in value.keys() & properties.keys():
        errors += check(value[name], properties[name], root, f"{path}.{name}")
    return errors


def _one_of_errors(value, schema, root, path):
    fitting = [part for part in schema["oneOf"] if not check(value, part, root, path)]
    return [] if len(fitting) == 1 else [f"{path}: fits {len(fitting)} of the forms: {value}"]


def check(value, schema, root=None, path="$"):
    """Returns all validation errors of the value; an empty list if it is valid."""
    root = root or schema
    unknown = schema.keys() - _KNOWN
    if unknown:
        raise ValueError(f"the schema uses {unknown}, which this does not check")
    if "$ref" in schema:
        return check(value, root["$defs"][schema["$ref"].removeprefix("#/$defs/")], root, path)
    if "oneOf" in schema:
        return _one_of_errors(value, schema, root, path)
    if "const" in schema:
        return [] if value == schema["const"] else [f"{path}: {value!r} is not {schema['const']!r}"]
    if "type" in schema and not _has_type(value, schema["type"]):
        return [f"{path}: {value!r} is not of type {schema['type']}"]
    if "pattern" in schema and not re.search(schema["pattern"], value):
        return [f"{path}: {value!r} does not match {schema['pattern']}"]
    if "minimum" in schema and value < schema["minimum"]:
        return [f"{path}: {value} is below {schema['minimum']}"]
    if isinstance(value, list):
        return [error for i, item in enumerate(value) for error in check(item, schema["items"], root, f"{path}[{i}]")]
    return _object_errors(value, schema, root, path) if isinstance(value, dict) else []
