"""What ./run shows without a display comes out well, in the language that is named."""
import sys

from arrangement import Arrangement
from end_to_end import BUILD
from run import demonstrate

language = sys.argv[1]
folder = BUILD / "tests/e2e" / f"demonstration-{language}"
with Arrangement(BUILD, folder, own_display=True, language=language).lay_out() as arrangement:
    sys.exit(demonstrate(arrangement, folder / "pictures"))
