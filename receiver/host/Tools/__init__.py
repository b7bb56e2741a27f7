"""Helpers for files, folders and pictures."""
