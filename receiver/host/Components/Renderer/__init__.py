"""What shows a source on screen, for skins to choose."""
