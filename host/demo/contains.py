#!/usr/bin/env python3
"""Checks that a running configuration holds everything that a message set.

Usage: contains.py MESSAGE RUNNING (files). Exit status 1, with the path of the first difference, when it does not.
"""
import json
import sys


def instances(value):
    return value if isinstance(value, list) else [value]


def missing(sent, running, path):
    """The path of the first thing in `sent` that `running` lacks, or None."""
    if isinstance(sent, list) or isinstance(running, list):
        for element in instances(sent):
            if all(missing(element, candidate, path) for candidate in instances(running)):
                return f"{path}: {json.dumps(element)}"
        return None
    if isinstance(sent, dict):
        for key, value in sent.items():
            if not isinstance(running, dict) or key not in running:
                return f"{path}/{key}"
            below = missing(value, running[key], f"{path}/{key}")
            if below:
                return below
        return None
    return None if sent == running else f"{path}: {sent!r}, running is {running!r}"


with open(sys.argv[1]) as message, open(sys.argv[2]) as running:
    lacking = missing(json.load(message)["config"], json.load(running)["config"], "config")
if lacking:
    sys.exit(f"not in the running configuration: {lacking}")
