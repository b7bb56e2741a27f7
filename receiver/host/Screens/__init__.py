"""The dialogs of the host, and the session that they live in."""
