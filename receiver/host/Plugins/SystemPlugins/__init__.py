"""Plug-ins that set the receiver up."""
