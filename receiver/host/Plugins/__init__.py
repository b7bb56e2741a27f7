"""The plug-ins, one folder a category."""
