select category, count(part_no) as parts, max(list_price) as dearest
from parts
group by category
having max(list_price) >= 20
order by dearest desc
