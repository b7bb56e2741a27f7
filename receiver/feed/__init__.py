# -*- coding: utf-8 -*-
"""The sample feed: its plain descriptions, what makes a feed of them, and its HTTP server."""
