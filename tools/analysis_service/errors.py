class ServiceError(Exception):
    """A request that cannot be served; becomes an HTTP error with this status and text."""

    def __init__(self, status, text):
        super().__init__(text)
        self.status = status
