"""What many measurements come to."""


def median(values):
    """The middle value."""
    ordered = sorted(values)
    middle = len(ordered) // 2
    return ordered[middle] if len(ordered) % 2 else (ordered[middle - 1] + ordered[middle]) / 2.0


def quartiles(values):
    """The two values between which the middle half lies."""
    ordered = sorted(values)
    quarter = len(ordered) // 4
    return ordered[quarter], ordered[-1 - quarter]


def ratios(values, others):
    """The ratios pair by pair."""
    return [float(value) / other for value, other in zip(values, others)]
