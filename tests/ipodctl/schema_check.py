"""Checks a JSON value against a schema."""
import jsonschema


def check(value, schema):
    """Returns all validation errors of the value; an empty list if it is valid."""
    return [f"{error.json_path}: {error.message}" for error in jsonschema.Draft202012Validator(schema).iter_errors(value)]
