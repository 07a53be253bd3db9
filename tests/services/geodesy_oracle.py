# Reads lines "ell a rf lon0 lat lon h" (degrees), prints for each:
# transverse Mercator northing easting (scale 1, no false easting) and
# geocentric x y z, computed by PROJ through pyproj.
import sys
from pyproj import Transformer

for line in sys.stdin:
    a, rf, lon0, lat, lon, h = map(float, line.split())
    ell = f"+a={a!r} +rf={rf!r}"
    tm = Transformer.from_crs(f"+proj=longlat {ell} +no_defs", f"+proj=tmerc +lat_0=0 +lon_0={lon0!r} +k=1 +x_0=0 +y_0=0 {ell} +units=m +no_defs", always_xy=True)
    east, north = tm.transform(lon, lat)
    gc = Transformer.from_crs(f"+proj=longlat {ell} +no_defs", f"+proj=geocent {ell} +units=m +no_defs", always_xy=True)
    x, y, z = gc.transform(lon, lat, h)
    print(repr(north), repr(east), repr(x), repr(y), repr(z))
