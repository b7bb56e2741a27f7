"""Where widgets get what they show from."""
