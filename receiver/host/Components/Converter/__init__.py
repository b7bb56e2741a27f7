"""What turns a source into another form, for skins to choose."""
