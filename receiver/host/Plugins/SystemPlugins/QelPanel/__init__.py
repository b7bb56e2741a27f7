"""The control panel."""
