"""What is compiled code on a receiver; `enigma` shows it to the Python layer."""
